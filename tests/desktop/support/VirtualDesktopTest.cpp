#include "desktop/support/VirtualDesktop.h"

#include <QBuffer>
#include <gtest/gtest.h>

namespace framora {
namespace {

TEST(VirtualDesktopTest, showsAProgramAndTakesItsKeys) {
    VirtualDesktop desktop;
    DesktopDisplay& display = desktop.display();
    const QString typed = desktop.scratchPath() + QStringLiteral("/typed");
    desktop.start(QStringLiteral("xterm"), {QStringLiteral("-xrm"), QStringLiteral("*wmTimeout: 100"),
                                            QStringLiteral("-e"), QStringLiteral("sh"), QStringLiteral("-c"),
                                            QStringLiteral("read line; echo \"$line\" > ") + typed});
    ASSERT_TRUE(
        VirtualDesktop::waitFor([&] { return display.windowOfClass(QStringLiteral("xterm")).has_value(); }));
    const auto window = display.windowOfClass(QStringLiteral("xterm"));
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return display.activeWindow() == window->id; }));
    EXPECT_GT(window->frame.height(), window->geometry.height());
    display.type(QStringLiteral("Framora (X11)\n"));
    EXPECT_TRUE(VirtualDesktop::waitFor([&] {
        QFile file(typed);
        return file.open(QIODevice::ReadOnly) && file.readAll() == "Framora (X11)\n";
    }));
}

TEST(VirtualDesktopTest, showsItsWallpaperWithACompositorToo) {
    for (const bool compositor : {false, true}) {
        DesktopOptions options;
        options.compositor = compositor;
        VirtualDesktop desktop(options);
        QImage wallpaper(options.size, QImage::Format_RGB32);
        wallpaper.fill(QColor(10, 120, 200));
        desktop.display().setWallpaper(wallpaper);
        EXPECT_TRUE(VirtualDesktop::waitFor([&] {
            return desktop.display().pixelAt({600, 300}) == QColor(10, 120, 200);
        })) << "compositor "
            << compositor;
        EXPECT_EQ(desktop.display().screenshot().size(), options.size);
    }
}

TEST(VirtualDesktopTest, servesItsClipboard) {
    VirtualDesktop desktop;
    EXPECT_TRUE(desktop.clipboard().isEmpty());
    QImage image(7, 5, QImage::Format_RGB32);
    image.fill(QColor(200, 30, 40));
    QByteArray png;
    QBuffer buffer(&png);
    ASSERT_TRUE(image.save(&buffer, "PNG"));
    desktop.setClipboard(png, QStringLiteral("image/png"));
    EXPECT_EQ(desktop.clipboardImage().convertToFormat(QImage::Format_RGB32), image);
}

TEST(VirtualDesktopTest, hasTheTrayItIsAskedFor) {
    for (const TrayHost host : {TrayHost::tint2, TrayHost::trayer, TrayHost::xfcePanel}) {
        DesktopOptions options;
        options.trayHost = host;
        EXPECT_NO_THROW(VirtualDesktop desktop(options)) << int(host);
    }
}

TEST(VirtualDesktopTest, leavesNoProcessBehind) {
    std::vector<qint64> processes;
    {
        DesktopOptions options;
        options.windowManager = WindowManager::xfwm4;
        VirtualDesktop desktop(options);
        desktop.start(QStringLiteral("sh"),
                      {QStringLiteral("-c"), QStringLiteral("setsid sleep 1000 & sleep 1000")});
        ASSERT_TRUE(VirtualDesktop::waitFor([&] { return desktop.processes().size() >= 6; }));
        processes = desktop.processes();
    }
    for (const qint64 pid : processes)
        EXPECT_TRUE(VirtualDesktop::waitFor([&] { return ChildProcess::nameOf(pid).isEmpty(); }, 3000))
            << ChildProcess::nameOf(pid).toStdString();
}

TEST(VirtualDesktopTest, saysWhenAProgramCannotBeLaunched) {
    VirtualDesktop desktop;
    EXPECT_THROW(desktop.start(QStringLiteral("no-such-program-anywhere")), std::runtime_error);
}

} // namespace
} // namespace framora
