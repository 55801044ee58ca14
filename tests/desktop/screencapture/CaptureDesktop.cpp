#include "desktop/screencapture/CaptureDesktop.h"

#include <QBuffer>

namespace framora {

CaptureDesktop::CaptureDesktop(const DesktopOptions& options) : m_desktop(options) {}

ChildProcess& CaptureDesktop::launch(const QStringList& arguments) {
    return m_desktop.start(QStringLiteral(FRAMORA_SCREENCAPTURE), arguments);
}

bool CaptureDesktop::overlayIsUp() {
    return display().windowTitled(QStringLiteral("framora-screencapture")).has_value();
}

ChildProcess* CaptureDesktop::open(const QStringList& arguments) {
    ChildProcess& tool = launch(arguments);
    VirtualDesktop::waitFor([&] { return overlayIsUp() || !tool.isRunning(); });
    return tool.isRunning() ? &tool : nullptr;
}

int CaptureDesktop::exitCodeOf(ChildProcess& tool) {
    return tool.waitForExit() ? tool.exitCode() : -1;
}

int CaptureDesktop::toolProcesses() {
    int count = 0;
    for (const qint64 pid : m_desktop.processes())
        count += ChildProcess::nameOf(pid).startsWith(QStringLiteral("framora-screenc"));
    return count;
}

std::unique_ptr<PaintedWindow> CaptureDesktop::show(const PaintedWindow::Options& options) {
    auto window = std::make_unique<PaintedWindow>(m_desktop.displayName(), options);
    // A window manager that is only just starting may miss the first request.
    for (int attempt = 0; attempt < 5 && !VirtualDesktop::waitFor([&] { return window->painted(); }, 1000);
         ++attempt)
        window->map();
    EXPECT_TRUE(window->painted());
    settledScreen();
    return window;
}

QImage CaptureDesktop::settledScreen() {
    return VirtualDesktop::settled([&] { return display().screenshot(); }, 7);
}

QImage CaptureDesktop::paperTheWall() {
    QImage wallpaper(display().size(), QImage::Format_RGB32);
    for (int y = 0; y < wallpaper.height(); ++y)
        for (int x = 0; x < wallpaper.width(); ++x)
            reinterpret_cast<QRgb*>(wallpaper.scanLine(y))[x] =
                qRgb(x & 255, y & 255, (x >> 8) * 16 + (y >> 8));
    display().setWallpaper(wallpaper);
    EXPECT_TRUE(VirtualDesktop::waitFor([&] {
        return display().pixelAt({700, 3}) == wallpaper.pixelColor(700, 3);
    }));
    return wallpaper;
}

QByteArray CaptureDesktop::fillClipboard() {
    QImage image(9, 4, QImage::Format_RGB32);
    image.fill(QColor(12, 200, 90));
    QByteArray png;
    QBuffer buffer(&png);
    image.save(&buffer, "PNG");
    m_desktop.setClipboard(png, QStringLiteral("image/png"));
    return png;
}

testing::AssertionResult samePixels(const QImage& actual, const QImage& expected, int tolerance) {
    if (actual.size() != expected.size())
        return testing::AssertionFailure() << actual.width() << "x" << actual.height() << " instead of "
                                           << expected.width() << "x" << expected.height();
    const QImage a = actual.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QImage b = expected.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    int wrong = 0;
    QPoint first;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = reinterpret_cast<const QRgb*>(a.constScanLine(y))[x];
            const QRgb q = reinterpret_cast<const QRgb*>(b.constScanLine(y))[x];
            const int off = std::max({std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                                      std::abs(qBlue(p) - qBlue(q)), std::abs(qAlpha(p) - qAlpha(q))});
            if (off > tolerance && !wrong++)
                first = {x, y};
        }
    if (!wrong)
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << wrong << " pixels differ, the first at " << first.x() << "," << first.y() << ": " << std::hex
           << a.pixel(first) << " instead of " << b.pixel(first);
}

} // namespace framora
