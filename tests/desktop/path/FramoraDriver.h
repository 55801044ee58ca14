#pragma once

#include "desktop/support/FramoraUser.h"
#include "desktop/support/VirtualDesktop.h"

namespace framora {

/// Framora's user on a virtual desktop: keys, pointer and eyes.
class FramoraDriver : public FramoraUser {
public:
    /// The desktop has a session bus. Finding controls by name needs its accessibility bus as well.
    explicit FramoraDriver(VirtualDesktop& desktop) : m_desktop(desktop) {}

    /// Starts Framora and returns when it answers its shortcuts.
    ChildProcess& launch();

    void pressAreaShortcut();
    void pressWindowShortcut();
    std::optional<DesktopWindow> overlay();
    DesktopWindow waitForOverlay();
    void waitForNoOverlay();
    /// Drags over the area and waits until the capture tool has gone.
    void selectArea(const QRect& area);
    /// The shortcut, an area, and the toast that is this capture's own: its card.
    QRect capture(const QRect& area);

    std::optional<DesktopWindow> toast();
    /// The card that takes clicks, where it stands; waits for the interactive toast.
    QRect waitForInteractiveToast();
    DesktopWindow waitForToast();
    void waitForNoToast();

    std::optional<DesktopWindow> editor();
    DesktopWindow waitForEditor();
    void waitForNoEditor();
    /// The shortcut, an area, a click on the toast: returns when the editor is there.
    DesktopWindow captureAndEdit(const QRect& area);

    AccessibleNode control(const QString& name, const QString& role = {}) {
        return findControl(m_desktop.busAddress(), name, role);
    }
    void clickControl(const QString& name, const QString& role = {});
    /// Turns the sidebar to the tab of that name.
    void showTab(const QString& name);
    /// Save to File, and the path into the file dialog; returns when the file is there, whole.
    void save(const QString& path);
    /// Waits for the file dialog and types the path.
    void answerSaveDialog(const QString& path);

    DesktopDisplay& display() { return m_desktop.display(); }
    VirtualDesktop& desktop() { return m_desktop; }

private:
    VirtualDesktop& m_desktop;
};

} // namespace framora
