#pragma once

#include "desktop/support/FramoraUser.h"
#include "desktop/support/PaintedSurface.h"
#include "desktop/support/SwayDesktop.h"

#include <gtest/gtest.h>

namespace framora {

/// A sway desktop of its own with Framora's user: by commands that a key is bound to, pointer, keys and eyes.
class FramoraOnSway : public FramoraUser {
public:
    /// Each output has a known picture behind everything.
    explicit FramoraOnSway(const SwayOptions& options);
    ~FramoraOnSway();
    FramoraOnSway(const FramoraOnSway&) = delete;
    FramoraOnSway& operator=(const FramoraOnSway&) = delete;

    /// One output of so many logical pixels, with an accessibility bus.
    static SwayOptions options(double scale = 1, QSize size = {1280, 800});

    SwayDesktop& desktop() { return m_desktop; }
    VirtualInput& input() { return m_desktop.input(); }
    PaintedSurface& background(int output = 0) { return *m_backgrounds.at(std::size_t(output)); }
    /// Device pixels of a logical area of an output's background.
    QImage backgroundPixels(const QRect& area, int output = 0);

    /// Programs of Framora do without this variable from now on.
    void unset(const QString& variable) { m_unset << QStringLiteral("--unset") << variable; }
    /// Starts Framora and returns when it takes commands.
    ChildProcess& launch();
    /// Ends it as the session's end does, and sees that it went well.
    void quit();
    /// `framora --...` to its end.
    void command(const QString& option);

    /// Asks for a capture and returns when the overlay is up.
    void openCapture(const QString& option = QStringLiteral("--capture-area"));
    void waitForNoCapture();
    /// Drags over the area, in logical pixels, and waits until the capture tool has gone.
    void selectArea(const QRect& area);

    /// Where something is in front of the output's background, in logical pixels; empty for nothing.
    QRect inFront(int output = 0);
    /// The toast's card; waits until it stands still.
    QRect waitForToast(int output = 0);
    void waitForNothingInFront(int output = 0);
    /// Captures the area and returns the toast's card.
    QRect capture(const QRect& area, int output = 0);

    std::optional<SwayWindow> editor();
    SwayWindow waitForEditor();
    void waitForNoEditor();
    /// An area, a click on the toast: returns when the editor is there, in the middle of the first output.
    SwayWindow captureAndEdit(const QRect& area);

    /// A control of the editor, in logical pixels of the layout.
    AccessibleNode control(const QString& name, const QString& role = {});
    void clickControl(const QString& name, const QString& role = {});
    /// Save to File, and the path into the file dialog; what was saved.
    QImage save(const QString& path);

    /// Takes the clipboard and says what of Framora is left.
    testing::AssertionResult leavesNothing();

private:
    ChildProcess& startFramora(const QStringList& arguments = {});

    SwayOptions m_options;
    SwayDesktop m_desktop;
    std::vector<std::unique_ptr<PaintedSurface>> m_backgrounds;
    QStringList m_unset;
};

} // namespace framora
