#include "desktop/screencapture/CaptureDesktop.h"

namespace framora {
namespace {

/// With a compositing manager and without one.
class WindowCaptureTest : public testing::TestWithParam<bool> {
protected:
    explicit WindowCaptureTest(WindowManager manager = WindowManager::openbox) : capture(options(manager)) {
        capture.paperTheWall();
    }
    static DesktopOptions options(WindowManager manager) {
        DesktopOptions options;
        options.compositor = GetParam();
        options.windowManager = manager;
        return options;
    }
    DesktopDisplay& display() { return capture.display(); }
    QImage clipboard() { return capture.desktop().clipboardImage(); }
    QImage captureAt(const QPoint& position) {
        display().moveTo(position);
        ChildProcess* tool = capture.open({QStringLiteral("-w"), QStringLiteral("-c"), QStringLiteral("-x")});
        EXPECT_TRUE(tool);
        if (!tool)
            return {};
        display().click(position);
        EXPECT_EQ(capture.exitCodeOf(*tool), 0);
        return clipboard();
    }
    QRect frameOf(const PaintedWindow& window) {
        for (const DesktopWindow& candidate : display().windows())
            if (candidate.id == window.id())
                return candidate.frame;
        return {};
    }

    CaptureDesktop capture;
};

/// Without a window manager every window is exactly where its program put it.
class BareWindowCaptureTest : public WindowCaptureTest {
protected:
    BareWindowCaptureTest() : WindowCaptureTest(WindowManager::none) {}
};

const auto nameOfRun = [](const auto& run) {
    return run.param ? std::string("composited") : std::string("plain");
};
INSTANTIATE_TEST_SUITE_P(Desktop, WindowCaptureTest, testing::Bool(), nameOfRun);
INSTANTIATE_TEST_SUITE_P(Desktop, BareWindowCaptureTest, testing::Bool(), nameOfRun);

TEST_P(WindowCaptureTest, aCoveredWindowComesOutWholeWithItsFrame) {
    const auto lower = capture.show({.geometry = {100, 100, 400, 300}, .seed = 1});
    display().activate(lower->id());
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return display().activeWindow() == lower->id(); }));
    // An inactive frame looks different; the other window takes the focus before the reference is taken.
    const auto upper = capture.show({.geometry = {700, 500, 300, 200}, .seed = 2});
    const auto cover = capture.show({.geometry = {300, 250, 300, 250}, .seed = 3, .overrideRedirect = true});
    const QRect frame = frameOf(*lower);
    ASSERT_GT(frame.height(), 300);
    const QImage withCover = capture.settledScreen();
    ASSERT_FALSE(samePixels(withCover.copy(lower->picture().rect().translated(frameOf(*lower).topLeft())),
                            lower->picture()));
    const QImage picture = captureAt({150, 200});
    ASSERT_EQ(picture.size(), frame.size());
    // The client is whole, to the last pixel.
    const auto client = display().windowTitled(QStringLiteral("painted 1"));
    ASSERT_TRUE(client);
    EXPECT_TRUE(samePixels(picture.copy(client->geometry.translated(-frame.topLeft())), lower->picture()));
    // The visible part of the frame is what was on screen.
    const QRect titleBar(frame.left(), frame.top(), frame.width(), client->geometry.top() - frame.top());
    ASSERT_GT(titleBar.height(), 5);
    EXPECT_TRUE(samePixels(picture.copy(titleBar.translated(-frame.topLeft())), withCover.copy(titleBar)));
}

TEST_P(BareWindowCaptureTest, aWindowThatRepaintsLateIsWaitedFor) {
    const auto lower = capture.show({.geometry = {100, 100, 400, 300}, .seed = 4, .paintDelay = 200});
    const auto cover = capture.show({.geometry = {300, 50, 500, 500}, .seed = 5});
    EXPECT_TRUE(samePixels(captureAt({150, 200}), lower->picture()));
}

TEST_P(BareWindowCaptureTest, partsBeyondTheScreenAreInThePicture) {
    const auto window = capture.show({.geometry = {-150, 600, 400, 300}, .seed = 6});
    EXPECT_TRUE(samePixels(captureAt({50, 700}), window->picture()));
}

TEST_P(BareWindowCaptureTest, transparentCornersStayTransparent) {
    const auto window = capture.show({.geometry = {200, 200, 300, 200}, .seed = 7, .argb = true});
    const QImage picture = captureAt({350, 300});
    EXPECT_TRUE(samePixels(picture, window->picture(), 1));
    EXPECT_EQ(qAlpha(picture.pixel(0, 0)), 0);
    EXPECT_EQ(qAlpha(picture.pixel(30, 100)), 128);
    EXPECT_EQ(qAlpha(picture.pixel(150, 100)), 255);
}

TEST_P(WindowCaptureTest, transparentCornersStayTransparentInAFrame) {
    const auto window = capture.show({.geometry = {200, 200, 300, 200}, .seed = 7, .argb = true});
    const auto client = display().windowTitled(QStringLiteral("painted 7"));
    ASSERT_TRUE(client);
    const QImage screen = capture.settledScreen();
    const QImage picture = captureAt(client->geometry.center());
    ASSERT_EQ(picture.size(), client->frame.size());
    const QRect inside = client->geometry.translated(-client->frame.topLeft());
    EXPECT_TRUE(samePixels(picture.copy(inside), window->picture(), 1));
    const QRect titleBar(0, 0, picture.width(), inside.top());
    EXPECT_TRUE(
        samePixels(picture.copy(titleBar), screen.copy(titleBar.translated(client->frame.topLeft()))));
}

TEST_P(BareWindowCaptureTest, whatLiesOutsideTheShapeIsTransparent) {
    const std::vector<QRect> shape{{40, 0, 220, 200}, {0, 40, 300, 120}};
    const auto window = capture.show({.geometry = {200, 200, 300, 200}, .seed = 8, .shape = shape});
    QImage expected = window->picture().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < 200; ++y)
        for (int x = 0; x < 300; ++x)
            if (!shape[0].contains(x, y) && !shape[1].contains(x, y))
                expected.setPixel(x, y, 0);
    EXPECT_TRUE(samePixels(captureAt({350, 300}), expected));
}

TEST_P(BareWindowCaptureTest, invisibleMarginsAreLeftOut) {
    const auto below = capture.show({.geometry = {100, 100, 300, 300}, .seed = 9});
    const auto window =
        capture.show({.geometry = {300, 200, 400, 300}, .seed = 10, .shadow = {20, 24, 16, 30}});
    EXPECT_TRUE(samePixels(captureAt({500, 350}), window->picture().copy(20, 16, 400 - 44, 300 - 46)));
    // A click on the margin goes through to what is seen there.
    EXPECT_TRUE(samePixels(captureAt({310, 300}), below->picture()));
}

TEST_P(BareWindowCaptureTest, windowsThatLetClicksThroughAreNotTaken) {
    const auto window = capture.show({.geometry = {200, 200, 300, 200}, .seed = 11});
    const auto glass = capture.show({.geometry = {150, 150, 500, 500},
                                     .seed = 12,
                                     .argb = true,
                                     .overrideRedirect = true,
                                     .clickThrough = true});
    EXPECT_TRUE(samePixels(captureAt({350, 300}), window->picture()));
}

TEST_P(BareWindowCaptureTest, menusAndOtherUnmanagedWindowsCanBeTaken) {
    const auto menu = capture.show({.geometry = {400, 300, 180, 240}, .seed = 13, .overrideRedirect = true});
    EXPECT_TRUE(samePixels(captureAt({450, 400}), menu->picture()));
}

TEST_P(WindowCaptureTest, aClickOnTheDesktopTakesNothing) {
    const QByteArray before = capture.fillClipboard();
    const auto desktop = capture.show({.geometry = {0, 0, 1280, 800}, .seed = 14, .desktop = true});
    ChildProcess* tool = capture.open({QStringLiteral("-w")});
    ASSERT_TRUE(tool);
    display().click({640, 400});
    capture.settledScreen();
    EXPECT_TRUE(tool->isRunning());
    display().key({"Escape"});
    EXPECT_EQ(capture.exitCodeOf(*tool), 1);
    EXPECT_EQ(capture.desktop().clipboard(), before);
}

TEST_P(WindowCaptureTest, theWindowUnderThePointerIsHighlighted) {
    const auto window = capture.show({.geometry = {200, 200, 300, 200}, .seed = 15});
    const QRect frame = frameOf(*window);
    const QPoint away(900, 700);
    display().moveTo(away);
    const QColor undimmed = display().pixelAt(away);
    ChildProcess* tool = capture.open({QStringLiteral("-w")});
    ASSERT_TRUE(tool);
    // A compositor shows the overlay in its own time.
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return display().pixelAt(away) != undimmed; }));
    const QImage dimmed = capture.settledScreen();
    display().moveTo(frame.center());
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return display().pixelAt(frame.topLeft()).blue() > 200; }));
    const QImage lit = capture.settledScreen();
    EXPECT_NE(lit.pixel(frame.center()), dimmed.pixel(frame.center()));
    EXPECT_EQ(lit.pixel(away), dimmed.pixel(away));
    display().moveTo(away);
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return samePixels(display().screenshot(), dimmed); }))
        << "the highlight leaves no trace";
    display().key({"Escape"});
    EXPECT_EQ(capture.exitCodeOf(*tool), 1);
}

TEST_P(BareWindowCaptureTest, spaceSwitchesFromTheAreaToWindowsAndBack) {
    const auto lower = capture.show({.geometry = {100, 100, 400, 300}, .seed = 16});
    const auto cover = capture.show({.geometry = {300, 250, 300, 250}, .seed = 17});
    const QImage screen = capture.settledScreen();
    ChildProcess* tool = capture.open({QStringLiteral("-i")});
    ASSERT_TRUE(tool);
    display().key({"space"});
    display().click({150, 200});
    EXPECT_EQ(capture.exitCodeOf(*tool), 0);
    EXPECT_TRUE(samePixels(clipboard(), lower->picture()));

    tool = capture.open({QStringLiteral("-w")});
    ASSERT_TRUE(tool);
    display().key({"space"});
    display().drag({50, 60}, {450, 460});
    EXPECT_EQ(capture.exitCodeOf(*tool), 0);
    EXPECT_TRUE(samePixels(clipboard(), screen.copy(50, 60, 400, 400)));
}

TEST_P(WindowCaptureTest, theFocusStaysWhereItWas) {
    const auto window = capture.show({.geometry = {200, 200, 300, 200}, .seed = 18});
    display().activate(window->id());
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return display().focusedWindow() == window->id(); }));
    captureAt({300, 300});
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return display().focusedWindow() == window->id(); }));
    EXPECT_EQ(display().activeWindow(), window->id());
}

TEST_P(BareWindowCaptureTest, aWindowThatClosesMeanwhileIsTakenAsItWasSeen) {
    auto window = capture.show({.geometry = {200, 200, 300, 200}, .seed = 19});
    display().moveTo({300, 300});
    ChildProcess* tool = capture.open({QStringLiteral("-w")});
    ASSERT_TRUE(tool);
    const QImage picture = window->picture();
    window.reset();
    display().click({300, 300});
    EXPECT_EQ(capture.exitCodeOf(*tool), 0);
    EXPECT_TRUE(samePixels(clipboard(), picture));
}

} // namespace
} // namespace framora
