#pragma once

#include "desktop/support/PaintedSurface.h"
#include "desktop/support/SwayDesktop.h"

#include <gtest/gtest.h>

namespace framora {

/// A wlroots desktop whose outputs show known pixels, on which the capture tool is used as a person would.
class SwayCapture {
public:
    explicit SwayCapture(const std::vector<SwayOutput>& outputs = {SwayOutput()});
    /// Nothing of the tool may be left once another program owns the clipboard.
    ~SwayCapture();

    SwayDesktop& desktop() { return m_desktop; }
    VirtualInput& input() { return m_desktop.input(); }
    /// What the output of this index shows behind all windows, in its device pixels and upright.
    const QImage& background(int output = 0) const { return m_shown.at(std::size_t(output)); }

    /// Starts the tool and returns when every output shows its overlay; null when it ended instead.
    ChildProcess* open(const QString& mode = QStringLiteral("-i"));
    /// Starts it without waiting for anything.
    ChildProcess& launch(const QStringList& arguments);
    /// The exit code, -1 when it does not end within ten seconds.
    static int exitCodeOf(ChildProcess& tool);
    /// Processes of the tool, the one that serves the clipboard included.
    int toolProcesses() const;

    /// Waits until output 0 shows something else than `before`.
    bool screenChangesFrom(const QImage& before, int output = 0);
    /// Presses a button of the pointer at one place, goes to the other and lets go, in logical pixels.
    void drag(const QPointF& from, const QPointF& to);
    /// A small picture on the clipboard, served by another program.
    QByteArray fillClipboard();
    /// A window with a pattern of the scale's device pixels, its content placed there.
    std::unique_ptr<PaintedSurface> show(const QRect& content, double scale, const QString& title, int seed);

    /// The compositor goes away with everything on it still there.
    void endCompositor();

private:
    SwayDesktop m_desktop;
    int m_outputs;
    bool m_ended = false;
    std::vector<std::unique_ptr<PaintedSurface>> m_backgrounds;
    std::vector<QImage> m_shown;
};

/// Every pixel the same, alpha included.
testing::AssertionResult samePicture(const QImage& actual, const QImage& expected);

} // namespace framora
