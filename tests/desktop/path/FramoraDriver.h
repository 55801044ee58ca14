#pragma once

#include "desktop/support/AccessibleTree.h"
#include "desktop/support/VirtualDesktop.h"

#include <memory>

namespace framora {

/// Uses the built Framora on a virtual desktop the way a person would: keys, pointer and eyes. Every step
/// waits for what it should bring about and throws std::runtime_error naming it when that does not come.
class FramoraDriver {
public:
    /// The desktop has a session bus. Finding controls by name needs its accessibility bus as well.
    explicit FramoraDriver(VirtualDesktop& desktop);
    ~FramoraDriver();

    /// Where this build's programs are.
    static QString program(const QString& name);

    /// Starts Framora and returns when it answers its shortcuts.
    ChildProcess& launch();
    ChildProcess& framora() { return *m_framora; }

    void pressAreaShortcut();
    void pressWindowShortcut();
    std::optional<DesktopWindow> overlay();
    DesktopWindow waitForOverlay();
    void waitForNoOverlay();
    /// Drags over the area and waits until the capture tool has gone.
    void selectArea(const QRect& area);
    /// The capture tools that Framora runs at the moment.
    std::vector<qint64> captureTools();
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

    AccessibleNode control(const QString& name, const QString& role = {});
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
    void require(const QString& what, const std::function<bool()>& condition, int timeoutMs = 15000);

    VirtualDesktop& m_desktop;
    ChildProcess* m_framora = nullptr;
    std::unique_ptr<AccessibleTree> m_accessible;
};

} // namespace framora
