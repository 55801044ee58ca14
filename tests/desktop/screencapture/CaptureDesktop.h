#pragma once

#include "desktop/screencapture/PaintedWindow.h"
#include "desktop/support/VirtualDesktop.h"

#include <gtest/gtest.h>

namespace framora {

/// A desktop on which the capture tool is used as a person would.
class CaptureDesktop {
public:
    explicit CaptureDesktop(const DesktopOptions& options = {});

    VirtualDesktop& desktop() { return m_desktop; }
    DesktopDisplay& display() { return m_desktop.display(); }

    /// Starts the tool and returns when its overlay is up; null when it ended instead.
    ChildProcess* open(const QStringList& arguments);
    /// Starts it without waiting for anything.
    ChildProcess& launch(const QStringList& arguments);
    bool overlayIsUp();
    /// The exit code, -1 when it does not end within ten seconds.
    static int exitCodeOf(ChildProcess& tool);
    /// How many processes of the tool there are, the one that serves the clipboard included.
    int toolProcesses();

    /// A window in its place, painted.
    std::unique_ptr<PaintedWindow> show(const PaintedWindow::Options& options);
    /// The screen when nothing on it changes any more.
    QImage settledScreen();
    /// A picture of distinct colours as the wallpaper, which the screen then shows.
    QImage paperTheWall();
    /// A small picture on the clipboard, served by another program.
    QByteArray fillClipboard();

private:
    VirtualDesktop m_desktop;
};

/// Every pixel the same, alpha included, within `tolerance` a channel.
testing::AssertionResult samePixels(const QImage& actual, const QImage& expected, int tolerance = 0);

} // namespace framora
