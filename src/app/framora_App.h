#pragma once

#include "platform/NotificationCenter.h"
#include "platform/ProgramCommand.h"
#include "platform/WindowSystem.h"

#include <QElapsedTimer>
#include <functional>
#include <memory>

namespace framora {

class AppDelegate;
class FirstStart;

/// The application: it builds the desktop's real parts, joins them, and holds the one delegate.
class framora_App {
public:
    using WindowSystemFactory = std::function<std::unique_ptr<WindowSystem>(const WindowSystem::Services&)>;

    /// `makeWindowSystem` is called once, at once.
    explicit framora_App(const WindowSystemFactory& makeWindowSystem);
    ~framora_App();
    framora_App(const framora_App&) = delete;
    framora_App& operator=(const framora_App&) = delete;

    void launch();
    /// What the menu's commands do, for those who come by other ways, in a turn of its own. Nothing while a
    /// capture has the screen. Windows come forward by the token, which may be empty.
    void perform(ProgramCommand command, const QString& activationToken);

    /// True when it has quit for a new process to take its place.
    bool isToStartAgain() const { return m_isToStartAgain; }
    /// Starts that process, which waits for the end of this one.
    static void startAgain();

private:
    /// The window system has ended the connection, and only a new process gets a new one. Waits until no
    /// window is open, so that no work is lost.
    void quitToStartAgain();
    /// Brings forward what is open, and opens the preferences when nothing is.
    void raiseWindows();

    struct Desktop;
    std::unique_ptr<Desktop> m_desktop;
    std::unique_ptr<AppDelegate> _appDelegate;
    NotificationCenter::Token m_connectionEnded;
    QElapsedTimer m_age;
    bool m_isToStartAgain = false;
    std::unique_ptr<FirstStart> m_firstStart; ///< Until the user has found a way to the program.
};

} // namespace framora
