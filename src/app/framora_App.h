#pragma once

#include <memory>

namespace framora {

class AppDelegate;

/// The application: it builds the desktop's real parts, joins them, and holds the one delegate.
class framora_App {
public:
    framora_App();
    ~framora_App();
    framora_App(const framora_App&) = delete;
    framora_App& operator=(const framora_App&) = delete;

    void launch();
    /// Brings forward what is open, and opens the preferences when nothing is. Nothing while a capture has
    /// the screen.
    void raiseWindows();

private:
    struct Desktop;
    std::unique_ptr<Desktop> m_desktop;
    std::unique_ptr<AppDelegate> _appDelegate;
};

} // namespace framora
