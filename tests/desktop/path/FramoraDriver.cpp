#include "desktop/path/FramoraDriver.h"

#include <QDir>
#include <QElapsedTimer>

namespace framora {

ChildProcess& FramoraDriver::launch() {
    m_framora = &m_desktop.start(program(QStringLiteral("framora")));
    // Other starts are heard from here on; it is nearly ready.
    const QDir runtime(m_desktop.runtimePath());
    require(QStringLiteral("Framora starting"),
            [&] { return !runtime.entryList({QStringLiteral("framora-*.socket")}, QDir::System).isEmpty(); });
    // The shortcuts work once the server reports raw keys to the program; a first capture shows that they do.
    QElapsedTimer sincePress;
    int presses = 0;
    require(QStringLiteral("Framora answering its shortcut"), [&] {
        if (overlay())
            return true;
        if (!sincePress.isValid() || sincePress.elapsed() > 200) {
            pressAreaShortcut();
            ++presses;
            sincePress.start();
        }
        return false;
    });
    display().key({"Escape"});
    waitForNoOverlay();
    // A second press may still be under way.
    if (presses > 1 && VirtualDesktop::waitFor([&] { return overlay().has_value(); }, 200)) {
        display().key({"Escape"});
        waitForNoOverlay();
    }
    return *m_framora;
}

void FramoraDriver::pressAreaShortcut() {
    display().key({"Shift_L", "Alt_L", "4"});
}

void FramoraDriver::pressWindowShortcut() {
    display().key({"Shift_L", "Alt_L", "t"});
}

std::optional<DesktopWindow> FramoraDriver::overlay() {
    return display().windowTitled(QStringLiteral("framora-screencapture"));
}

DesktopWindow FramoraDriver::waitForOverlay() {
    require(QStringLiteral("the capture tool's overlay"), [&] { return overlay().has_value(); });
    return *overlay();
}

void FramoraDriver::waitForNoOverlay() {
    require(QStringLiteral("the overlay going away"), [&] { return !overlay(); });
}

void FramoraDriver::selectArea(const QRect& area) {
    display().drag(area.topLeft(), area.topLeft() + QPoint(area.width(), area.height()));
    waitForNoOverlay();
    require(QStringLiteral("the capture tool's end"), [&] { return captureTools().empty(); });
}

QRect FramoraDriver::capture(const QRect& area) {
    const auto earlier = toast();
    pressAreaShortcut();
    waitForOverlay();
    selectArea(area);
    QRect card;
    require(QStringLiteral("the capture's toast"), [&] {
        const auto window = toast();
        card = window && (!earlier || window->id != earlier->id) ? display().inputArea(window->id) : QRect();
        return !card.isEmpty();
    });
    return card;
}

std::optional<DesktopWindow> FramoraDriver::toast() {
    return display().windowTitled(QStringLiteral("Framora toast"));
}

DesktopWindow FramoraDriver::waitForToast() {
    require(QStringLiteral("a toast"), [&] { return toast().has_value(); });
    return *toast();
}

QRect FramoraDriver::waitForInteractiveToast() {
    QRect card;
    require(QStringLiteral("the toast with the picture"), [&] {
        const auto window = toast();
        card = window ? display().inputArea(window->id) : QRect();
        return !card.isEmpty();
    });
    return card;
}

void FramoraDriver::waitForNoToast() {
    require(QStringLiteral("the toast going away"), [&] { return !toast(); });
}

std::optional<DesktopWindow> FramoraDriver::editor() {
    for (const DesktopWindow& window : display().windows())
        if (!window.overrideRedirect && window.title == QStringLiteral("Framora") &&
            window.geometry.width() >= 600)
            return window;
    return {};
}

DesktopWindow FramoraDriver::waitForEditor() {
    require(QStringLiteral("the editor"), [&] { return editor().has_value(); });
    return *editor();
}

void FramoraDriver::waitForNoEditor() {
    require(QStringLiteral("the editor going away"), [&] { return !editor(); });
}

DesktopWindow FramoraDriver::captureAndEdit(const QRect& area) {
    display().click(capture(area).center());
    return waitForEditor();
}

void FramoraDriver::clickControl(const QString& name, const QString& role) {
    display().click(control(name, role).area.center());
}

void FramoraDriver::showTab(const QString& name) {
    // A section of the tab may bear the same name; the tab's button comes first.
    clickControl(name);
    require(QStringLiteral("the tab \"%1\"").arg(name), [&] { return control(name).checked; });
}

void FramoraDriver::answerSaveDialog(const QString& path) {
    const auto dialog = [&]() -> std::optional<DesktopWindow> {
        for (const DesktopWindow& window : display().windows())
            if (window.className.contains(QStringLiteral("framora"), Qt::CaseInsensitive) &&
                !window.overrideRedirect && window.title != QStringLiteral("Framora"))
                return window;
        return {};
    };
    const auto isActive = [&] {
        const auto window = dialog();
        return window && display().activeWindow() == window->id;
    };
    FramoraUser::answerSaveDialog(
        display(), [&] { return dialog().has_value(); }, isActive, path);
}

void FramoraDriver::save(const QString& path) {
    clickControl(QStringLiteral("Save to File"));
    answerSaveDialog(path);
}

} // namespace framora
