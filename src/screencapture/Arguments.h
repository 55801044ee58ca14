#pragma once

#include "screencapture/CaptureMode.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace framora {

/// The command line, understood.
struct Arguments {
    /// What to do: take a picture, or only see to it that one can be taken.
    enum class Task {
        Capture,
        AskPermission, ///< have the desktop ask the user, where it asks at all
        CheckRoute,    ///< tell whether pictures can be taken without anybody being asked
    };

    Task task = Task::Capture;
    CaptureMode mode = CaptureMode::Area; ///< of a capture
    /// The window that a dialog of the desktop belongs to, as portals name it; empty for none.
    std::string parentWindow;

    /// Reads the arguments after the program's name; switches may be joined ("-icx"). Nothing when a switch
    /// is unknown or lacks its value, when not exactly one mode or other task is given, or when something is
    /// not a switch.
    static std::optional<Arguments> parse(std::span<const char* const> arguments);
    static std::string_view usage();
};

} // namespace framora
