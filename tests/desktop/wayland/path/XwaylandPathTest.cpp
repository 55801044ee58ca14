#include "desktop/screencapture/PaintedWindow.h"
#include "desktop/wayland/path/FramoraOnSway.h"

#include <QColorSpace>

namespace framora {
namespace {

QImage pixels(const QImage& image) {
    QImage plain = image.convertToFormat(QImage::Format_ARGB32);
    plain.setColorSpace({});
    return plain;
}

/// X programs and Wayland programs on one desktop.
class XwaylandPathTest : public testing::Test {
protected:
    static SwayOptions options() {
        SwayOptions options = FramoraOnSway::options();
        options.xwayland = true;
        return options;
    }

    /// A window of an X program, painted and in its place.
    std::unique_ptr<PaintedWindow> showXWindow(const QRect& place) {
        PaintedWindow::Options painted;
        painted.geometry = place;
        auto window = std::make_unique<PaintedWindow>(
            path.desktop().environment().value(QStringLiteral("DISPLAY")), painted);
        path.require(QStringLiteral("the X window"),
                     [&] { return path.desktop().window(QStringLiteral("painted 1")).has_value(); });
        path.desktop().place(*path.desktop().window(QStringLiteral("painted 1")), place);
        path.require(QStringLiteral("the X window's pixels"), [&] {
            return path.desktop().screenshot().copy(place) ==
                   pixels(window->picture()).convertToFormat(QImage::Format_RGB32);
        });
        return window;
    }

    FramoraOnSway path{options()};
};

TEST_F(XwaylandPathTest, takesAnXProgramsWindowAndAnAreaAcrossBoth) {
    const QRect place(300, 200, 320, 240);
    const auto window = showXWindow(place);
    path.launch();
    path.openCapture(QStringLiteral("--capture-window"));
    path.input().click(place.center());
    path.waitForNoCapture();
    EXPECT_TRUE(pixels(path.desktop().clipboardImage()) == pixels(window->picture()));
    const QRect area(250, 150, 200, 150);
    const QImage screen = path.desktop().screenshot().copy(area);
    path.openCapture();
    path.selectArea(area);
    EXPECT_TRUE(pixels(path.desktop().clipboardImage()) == pixels(screen));
    path.quit();
    EXPECT_TRUE(path.leavesNothing());
}

TEST_F(XwaylandPathTest, handsOverToTheCompositorWhereItsWindowsAreX) {
    path.desktop().setEnvironmentVariable(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    path.launch();
    const QRect area(200, 160, 320, 200);
    const QRect card = path.capture(area);
    EXPECT_TRUE(pixels(path.desktop().clipboardImage()) == pixels(path.backgroundPixels(area)));
    path.input().click(card.topLeft() - QPoint(40, 10));
    EXPECT_TRUE(SwayDesktop::waitFor([&] { return path.background().clicks().size() == 1; }));
    path.input().click(card.center());
    path.waitForEditor();
    EXPECT_TRUE(path.editor()->appId.isEmpty()) << "an X window";
    const QImage saved = path.save(path.desktop().scratchPath() + QStringLiteral("/saved.png"));
    EXPECT_EQ(saved.size(), 2 * (area.size() + QSize(160, 160)));
    path.clickControl(QStringLiteral("Copy to Clipboard"));
    path.waitForNoEditor();
    EXPECT_TRUE(
        SwayDesktop::waitFor([&] { return pixels(path.desktop().clipboardImage()) == pixels(saved); }));
    path.quit();
    EXPECT_TRUE(pixels(path.desktop().clipboardImage()) == pixels(saved)) << "after Framora has ended";
    EXPECT_TRUE(path.leavesNothing());
}

TEST_F(XwaylandPathTest, withoutAWaylandDisplayXWindowsAreTakenByTheServersOwnMeans) {
    const QRect place(300, 200, 320, 240);
    const auto window = showXWindow(place);
    path.unset(QStringLiteral("WAYLAND_DISPLAY"));
    path.unset(QStringLiteral("SWAYSOCK"));
    path.launch();
    path.openCapture(QStringLiteral("--capture-window"));
    path.input().click(place.center());
    path.waitForNoCapture();
    ASSERT_TRUE(SwayDesktop::waitFor([&] { return !path.desktop().clipboard().isEmpty(); }));
    EXPECT_TRUE(pixels(path.desktop().clipboardImage()) == pixels(window->picture()));
    path.quit();
    EXPECT_TRUE(path.leavesNothing());
}

} // namespace
} // namespace framora
