#include "desktop/screencapture/CaptureDesktop.h"

#include <cmath>

namespace framora {
namespace {

/// With a compositing manager and without one.
class AreaCaptureTest : public testing::TestWithParam<bool> {
protected:
    AreaCaptureTest() : capture(options()) {
        capture.paperTheWall();
        screen = capture.settledScreen();
    }
    static DesktopOptions options() {
        DesktopOptions options;
        options.compositor = GetParam();
        return options;
    }
    DesktopDisplay& display() { return capture.display(); }
    QImage clipboard() { return capture.desktop().clipboardImage(); }

    CaptureDesktop capture;
    QImage screen;
};

INSTANTIATE_TEST_SUITE_P(Desktop, AreaCaptureTest, testing::Bool(), [](const auto& run) {
    return run.param ? std::string("composited") : std::string("plain");
});

TEST_P(AreaCaptureTest, aDragInAnyDirectionPutsThosePixelsOnTheClipboard) {
    const QRect area(200, 150, 401, 273);
    const QPoint topLeft(200, 150);
    const QPoint bottomRight(601, 423);
    const std::pair<QPoint, QPoint> drags[] = {
        {topLeft, bottomRight},
        {bottomRight, topLeft},
        {{bottomRight.x(), topLeft.y()}, {topLeft.x(), bottomRight.y()}},
        {{topLeft.x(), bottomRight.y()}, {bottomRight.x(), topLeft.y()}},
    };
    for (const auto& [from, to] : drags) {
        ChildProcess* tool = capture.open({QStringLiteral("-i"), QStringLiteral("-c"), QStringLiteral("-x")});
        ASSERT_TRUE(tool);
        display().drag(from, to);
        EXPECT_EQ(capture.exitCodeOf(*tool), 0);
        EXPECT_TRUE(tool->output().isEmpty());
        EXPECT_TRUE(samePixels(clipboard(), screen.copy(area)));
        EXPECT_FALSE(capture.overlayIsUp());
    }
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return capture.toolProcesses() == 1; }))
        << "only the last picture is still served";
}

TEST_P(AreaCaptureTest, theScreenIsFrozenFromTheFirstMoment) {
    ChildProcess* tool = capture.open({QStringLiteral("-i")});
    ASSERT_TRUE(tool);
    // Something appears behind the overlay; it is neither seen nor taken.
    const auto late = std::make_unique<PaintedWindow>(
        capture.desktop().displayName(), PaintedWindow::Options{.geometry = {250, 200, 100, 100}});
    ASSERT_TRUE(VirtualDesktop::waitFor(
        [&] { return display().windowTitled(QStringLiteral("painted")).has_value(); }));
    display().drag({200, 150}, {400, 350});
    EXPECT_EQ(capture.exitCodeOf(*tool), 0);
    EXPECT_TRUE(samePixels(clipboard(), screen.copy(200, 150, 200, 200)));
}

TEST_P(AreaCaptureTest, theOverlayShowsTheSelectionBrightAndTheRestDimmed) {
    ChildProcess* tool = capture.open({QStringLiteral("-i")});
    ASSERT_TRUE(tool);
    display().moveTo({200, 150});
    display().press();
    display().moveTo({300, 250});
    display().moveTo({500, 350});
    const QRect bright(200, 150, 300, 200);
    ASSERT_TRUE(VirtualDesktop::waitFor(
        [&] { return samePixels(display().screenshot(bright), screen.copy(bright)); }));
    const QImage shown = capture.settledScreen();
    for (const QPoint at :
         {QPoint(100, 100), QPoint(900, 200), QPoint(350, 700), QPoint(1279, 799), QPoint(0, 0)})
        for (const auto channel : {&QColor::red, &QColor::green, &QColor::blue})
            EXPECT_NEAR((shown.pixelColor(at).*channel)(), (screen.pixelColor(at).*channel)() * 0.625, 2)
                << at.x() << "," << at.y();
    EXPECT_GT(shown.pixelColor(199, 250).lightness(), 220) << "the outline";
    display().key({"Escape"});
    EXPECT_EQ(capture.exitCodeOf(*tool), 1);
    display().release();
    EXPECT_TRUE(samePixels(capture.settledScreen(), screen)) << "nothing is left on screen";
}

TEST_P(AreaCaptureTest, escapeLeavesTheEarlierClipboardServed) {
    const QByteArray before = capture.fillClipboard();
    for (const bool dragging : {false, true}) {
        ChildProcess* tool = capture.open({QStringLiteral("-i")});
        ASSERT_TRUE(tool);
        if (dragging) {
            display().moveTo({200, 150});
            display().press();
            display().moveTo({500, 350});
        }
        // As it is when the shortcut's modifiers are still down.
        display().keyDown("Shift_L");
        display().keyDown("Alt_L");
        display().key({"Escape"});
        EXPECT_EQ(capture.exitCodeOf(*tool), 1);
        display().keyUp("Alt_L");
        display().keyUp("Shift_L");
        if (dragging)
            display().release();
        EXPECT_TRUE(tool->output().isEmpty());
        EXPECT_EQ(capture.desktop().clipboard(), before);
        EXPECT_EQ(capture.toolProcesses(), 0);
    }
}

TEST_P(AreaCaptureTest, theSecondaryButtonCancels) {
    const QByteArray before = capture.fillClipboard();
    ChildProcess* tool = capture.open({QStringLiteral("-i")});
    ASSERT_TRUE(tool);
    display().click({300, 300}, DesktopDisplay::Button::right);
    EXPECT_EQ(capture.exitCodeOf(*tool), 1);
    EXPECT_EQ(capture.desktop().clipboard(), before);
}

TEST_P(AreaCaptureTest, aClickWithoutADragCapturesNothing) {
    const QByteArray before = capture.fillClipboard();
    ChildProcess* tool = capture.open({QStringLiteral("-i")});
    ASSERT_TRUE(tool);
    display().click({300, 300});
    capture.settledScreen();
    EXPECT_TRUE(capture.overlayIsUp());
    EXPECT_EQ(capture.desktop().clipboard(), before);
    display().drag({100, 100}, {150, 160});
    EXPECT_EQ(capture.exitCodeOf(*tool), 0);
    EXPECT_TRUE(samePixels(clipboard(), screen.copy(100, 100, 50, 60)));
}

TEST_P(AreaCaptureTest, spaceMovesTheSelectionAndShiftKeepsItsAxis) {
    ChildProcess* tool = capture.open({QStringLiteral("-i")});
    ASSERT_TRUE(tool);
    display().moveTo({100, 100});
    display().press();
    display().moveTo({200, 180});
    display().keyDown("space");
    display().moveTo({260, 220});
    display().keyUp("space"); // now 160,140 to 260,220
    display().keyDown("Shift_L");
    display().moveTo({300, 224}); // wider only
    display().moveTo({340, 400});
    display().release();
    display().keyUp("Shift_L");
    EXPECT_EQ(capture.exitCodeOf(*tool), 0);
    EXPECT_TRUE(samePixels(clipboard(), screen.copy(160, 140, 180, 80)));
}

TEST_P(AreaCaptureTest, shiftHeldFromTheShortcutDoesNotConstrain) {
    display().keyDown("Shift_L");
    display().keyDown("Alt_L");
    ChildProcess* tool = capture.open({QStringLiteral("-i")});
    ASSERT_TRUE(tool);
    display().moveTo({100, 100});
    display().press();
    display().moveTo({200, 100});
    display().moveTo({200, 180});
    display().release();
    display().keyUp("Alt_L");
    display().keyUp("Shift_L");
    EXPECT_EQ(capture.exitCodeOf(*tool), 0);
    EXPECT_TRUE(samePixels(clipboard(), screen.copy(100, 100, 100, 80)));
}

TEST_P(AreaCaptureTest, theWholeScreenCanBeDragged) {
    ChildProcess* tool = capture.open({QStringLiteral("-i")});
    ASSERT_TRUE(tool);
    display().drag({0, 0}, {1279, 799});
    EXPECT_EQ(capture.exitCodeOf(*tool), 0);
    EXPECT_TRUE(samePixels(clipboard(), screen));
}

TEST_P(AreaCaptureTest, thePictureCarriesThePixelRatioAsItsResolution) {
    for (const auto& [dpi, ratio] : {std::pair{96, 1.0}, {144, 1.5}, {192, 2.0}}) {
        capture.desktop().run(QStringLiteral("xrdb"), {QStringLiteral("-merge"), QStringLiteral("-nocpp")},
                              10000, "Xft.dpi: " + QByteArray::number(dpi) + "\n");
        ChildProcess* tool = capture.open({QStringLiteral("-i")});
        ASSERT_TRUE(tool);
        display().drag({100, 100}, {150, 160});
        EXPECT_EQ(capture.exitCodeOf(*tool), 0);
        const QImage picture = clipboard();
        EXPECT_EQ(picture.dotsPerMeterX(), std::lround(72 * ratio / 0.0254)) << dpi;
        EXPECT_EQ(picture.dotsPerMeterY(), picture.dotsPerMeterX());
        EXPECT_EQ(picture.size(), QSize(50, 60)) << "in device pixels whatever the ratio";
    }
}

TEST_P(AreaCaptureTest, everyMonitorHasItsOwnRatioInThePictureAndInTheOverlaysLines) {
    for (const auto& [name, place] :
         {std::pair{"left", "640/170x800/210+0+0"}, {"right", "640/85x800/105+640+0"}})
        capture.desktop().run(
            QStringLiteral("xrandr"),
            {QStringLiteral("--setmonitor"), QLatin1String(name), QLatin1String(place),
             name == QLatin1String("left") ? QStringLiteral("screen") : QStringLiteral("none")});
    // As Plasma tells its programs.
    capture.desktop().setEnvironmentVariable(QStringLiteral("QT_SCREEN_SCALE_FACTORS"),
                                             QStringLiteral("left=1;right=2;"));
    screen = capture.settledScreen();
    // Rows of the column at x that are not as they would be without any line.
    const auto linesAt = [&](int x) {
        const QImage shown = display().screenshot({x, 0, 1, screen.height()});
        int rows = 0;
        for (int y = 0; y < shown.height(); ++y) {
            const int dimmed = qRed(screen.pixel(x, y)) * (255 - 96) / 255;
            rows += std::abs(qRed(shown.pixel(0, y)) - dimmed) > 2;
        }
        return rows;
    };
    struct Place {
        QRect area;
        int x; ///< A column of the same monitor beside the pointer.
        int ratio;
    };
    for (const Place& place : {Place{{100, 100, 90, 70}, 500, 1}, Place{{800, 100, 90, 70}, 1200, 2},
                               // Begun on the left one.
                               Place{{600, 300, 90, 70}, 550, 1}}) {
        ChildProcess* tool = capture.open({QStringLiteral("-i")});
        ASSERT_TRUE(tool);
        const QPoint end = place.area.topLeft() + QPoint(place.area.width(), place.area.height());
        display().moveTo(place.area.topLeft());
        // A light line between two dark ones.
        EXPECT_TRUE(VirtualDesktop::waitFor([&] { return linesAt(place.x) == 3 * place.ratio; }))
            << linesAt(place.x);
        display().drag(place.area.topLeft(), end);
        EXPECT_EQ(capture.exitCodeOf(*tool), 0);
        const QImage picture = clipboard();
        EXPECT_TRUE(samePixels(picture, screen.copy(place.area))) << "in device pixels whatever the ratio";
        EXPECT_EQ(picture.dotsPerMeterX(), std::lround(72 * place.ratio / 0.0254));
    }
    for (const int ratio : {1, 2}) {
        const QRect place(ratio == 1 ? 100 : 800, 300, 200, 150);
        const auto window = capture.show({.geometry = place, .overrideRedirect = true});
        ChildProcess* tool = capture.open({QStringLiteral("-w")});
        ASSERT_TRUE(tool);
        display().click(place.center());
        EXPECT_EQ(capture.exitCodeOf(*tool), 0);
        EXPECT_TRUE(samePixels(clipboard(), window->picture()));
        EXPECT_EQ(clipboard().dotsPerMeterX(), std::lround(72 * ratio / 0.0254)) << "of the window's monitor";
    }
}

TEST_P(AreaCaptureTest, theSelectionSpansMonitorsAndWhatNoneShowsIsTransparent) {
    capture.desktop().run(QStringLiteral("xrandr"),
                          {QStringLiteral("--setmonitor"), QStringLiteral("left"),
                           QStringLiteral("640/170x800/210+0+0"), QStringLiteral("screen")});
    capture.desktop().run(QStringLiteral("xrandr"),
                          {QStringLiteral("--setmonitor"), QStringLiteral("right"),
                           QStringLiteral("640/170x500/130+640+100"), QStringLiteral("none")});
    screen = capture.settledScreen();
    ChildProcess* tool = capture.open({QStringLiteral("-i")});
    ASSERT_TRUE(tool);
    display().drag({500, 50}, {900, 700});
    EXPECT_EQ(capture.exitCodeOf(*tool), 0);
    QImage expected = screen.copy(500, 50, 400, 650).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < expected.height(); ++y)
        for (int x = 140; x < expected.width(); ++x)
            if (y < 50 || y >= 550)
                expected.setPixel(x, y, 0);
    EXPECT_TRUE(samePixels(clipboard(), expected));
}

} // namespace
} // namespace framora
