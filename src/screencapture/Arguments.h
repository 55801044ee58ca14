#pragma once

#include "screencapture/CaptureMode.h"

#include <optional>
#include <span>
#include <string_view>

namespace framora {

/// The command line, understood.
struct Arguments {
    CaptureMode mode = CaptureMode::Area;

    /// Reads the arguments after the program's name; switches may be joined ("-icx"). Nothing when a switch
    /// is unknown, when no mode or both modes are given, or when something is not a switch.
    static std::optional<Arguments> parse(std::span<const char* const> arguments);
    static std::string_view usage();
};

} // namespace framora
