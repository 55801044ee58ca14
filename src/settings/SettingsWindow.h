#pragma once

#include <functional>
#include <memory>

namespace framora {

/// The settings window, while it is open; destroying it closes it.
class SettingsWindow {
public:
    virtual ~SettingsWindow() = default;
    virtual void center() = 0;
    virtual void makeKeyAndOrderFront() = 0;
};

/// Builds the window with its content. `onWillClose` runs when the user closes it, out of the window's own
/// handlers: it goes in a later turn of the event loop. Null where the installation lacks what makes windows.
using SettingsWindowFactory =
    std::function<std::unique_ptr<SettingsWindow>(std::function<void()> onWillClose)>;

} // namespace framora
