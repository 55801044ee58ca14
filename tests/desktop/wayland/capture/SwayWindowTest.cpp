#include "desktop/wayland/capture/SwayCapture.h"

namespace framora {
namespace {

const QString kWindowMode = QStringLiteral("-w");

class SwayWindowScaleTest : public testing::TestWithParam<double> {};

TEST_P(SwayWindowScaleTest, aClickTakesTheWindowUnderThePointer) {
    const double scale = GetParam();
    SwayCapture capture({SwayOutput{QSize(800, 600) * scale, scale}});
    const auto lower = capture.show({100, 80, 300, 240}, scale, QStringLiteral("lower"), 8);
    const auto upper = capture.show({260, 200, 280, 200}, scale, QStringLiteral("upper"), 9);
    const QImage screen = capture.desktop().settledScreenshot();
    for (const bool top : {true, false}) {
        ChildProcess* tool = capture.open(kWindowMode);
        ASSERT_TRUE(tool);
        capture.input().click(top ? QPointF(300, 300) : QPointF(150, 100));
        ASSERT_EQ(SwayCapture::exitCodeOf(*tool), 0);
        const QImage picture = capture.desktop().clipboardImage();
        const QRect box = top ? QRect(260, 200, 280, 200) : QRect(100, 80, 300, 240);
        const QRect pixels(box.topLeft() * scale, box.size() * scale);
        EXPECT_TRUE(samePicture(picture, screen.copy(pixels)));
        if (top) {
            EXPECT_TRUE(samePicture(picture, upper->picture()));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(scales, SwayWindowScaleTest, testing::Values(1, 1.25, 2));

TEST(SwayWindowTest, aWindowComesWithItsTitleBarAndBorders) {
    SwayCapture capture;
    const auto window = capture.show({100, 100, 300, 200}, 1, QStringLiteral("framed"), 5);
    capture.desktop().command(QStringLiteral("[title=framed] border normal 4"));
    const QImage screen = capture.desktop().settledScreenshot();
    const SwayWindow told = capture.desktop().window(QStringLiteral("framed")).value();
    // The bar above is as high as its font makes it: from the first row that is not the background.
    ASSERT_GT(told.content.x(), 0);
    ChildProcess* tool = capture.open(kWindowMode);
    ASSERT_TRUE(tool);
    capture.input().click(told.content.center());
    ASSERT_EQ(SwayCapture::exitCodeOf(*tool), 0);
    const QImage picture = capture.desktop().clipboardImage();
    QRect seen;
    for (int y = 0; y < screen.height(); ++y)
        for (int x = 0; x < screen.width(); ++x)
            if (screen.pixel(x, y) != capture.background().pixel(x, y))
                seen |= QRect(x, y, 1, 1);
    EXPECT_GT(seen.height(), told.content.height() + 4);
    EXPECT_TRUE(samePicture(picture, screen.copy(seen)));
}

TEST(SwayWindowTest, tiledTabbedAndFullScreenWindowsAreTold) {
    SwayCapture capture;
    const auto one = capture.show({100, 100, 300, 200}, 1, QStringLiteral("one"), 5);
    const auto two = capture.show({300, 200, 300, 200}, 1, QStringLiteral("two"), 6);
    capture.desktop().command(QStringLiteral("[title=one] floating disable"));
    capture.desktop().command(QStringLiteral("[title=two] floating disable"));
    for (const char* layout : {"layout splith", "layout tabbed", "[title=two] fullscreen enable"}) {
        capture.desktop().command(QLatin1String(layout));
        capture.desktop().settledScreenshot();
        std::optional<SwayWindow> shown;
        for (const SwayWindow& window : capture.desktop().windows())
            if (window.visible)
                shown = window;
        ASSERT_TRUE(shown);
        const QImage screen = capture.desktop().settledScreenshot();
        ChildProcess* tool = capture.open(kWindowMode);
        ASSERT_TRUE(tool);
        capture.input().click(shown->content.center());
        ASSERT_EQ(SwayCapture::exitCodeOf(*tool), 0) << layout;
        const QImage picture = capture.desktop().clipboardImage();
        EXPECT_TRUE(samePicture(picture, screen.copy(shown->content))) << layout;
    }
}

TEST(SwayWindowTest, aWindowOverTwoOutputsIsTakenInThePixelsOfTheOneThatShowsMore) {
    SwayCapture capture({SwayOutput{{600, 400}, 1, {0, 0}}, SwayOutput{{1000, 800}, 2, {600, 0}}});
    const auto window = capture.show({500, 100, 300, 200}, 2, QStringLiteral("wide"), 3);
    const QImage right = capture.desktop().settledScreenshot(1);
    ChildProcess* tool = capture.open(kWindowMode);
    ASSERT_TRUE(tool);
    capture.input().click({550, 150});
    ASSERT_EQ(SwayCapture::exitCodeOf(*tool), 0);
    const QImage picture = capture.desktop().clipboardImage();
    ASSERT_EQ(picture.size(), QSize(600, 400));
    EXPECT_TRUE(samePicture(picture.copy(200, 0, 400, 400), right.copy(0, 200, 400, 400)));
}

TEST(SwayWindowTest, spaceLeadsToTheWindowsAndBack) {
    SwayCapture capture;
    const auto window = capture.show({100, 80, 300, 240}, 1, QStringLiteral("a window"), 8);
    for (const QString& mode : {QStringLiteral("-i"), kWindowMode}) {
        ChildProcess* tool = capture.open(mode);
        ASSERT_TRUE(tool);
        capture.input().moveTo({200, 200});
        capture.desktop().settledScreenshot();
        capture.input().key({"space"});
        if (mode == kWindowMode) {
            capture.drag({120, 100}, {180, 160});
        } else {
            capture.input().click({200, 200});
        }
        ASSERT_EQ(SwayCapture::exitCodeOf(*tool), 0);
        EXPECT_TRUE(
            samePicture(capture.desktop().clipboardImage(),
                        mode == kWindowMode ? window->picture().copy(20, 20, 60, 60) : window->picture()));
    }
}

TEST(SwayWindowTest, aClickOnTheDesktopTakesNothingAndTheOverlayStays) {
    SwayCapture capture;
    const auto window = capture.show({100, 80, 300, 240}, 1, QStringLiteral("a window"), 8);
    const QByteArray before = capture.fillClipboard();
    ChildProcess* tool = capture.open(kWindowMode);
    ASSERT_TRUE(tool);
    capture.input().click({700, 600});
    capture.desktop().settledScreenshot();
    EXPECT_TRUE(tool->isRunning());
    capture.input().key({"Escape"});
    EXPECT_EQ(SwayCapture::exitCodeOf(*tool), 1);
    EXPECT_EQ(capture.desktop().clipboard(), before);
}

TEST(SwayWindowTest, withoutTheCompositorsWordOnWindowsThereIsNoWindowModeHere) {
    SwayCapture capture;
    const auto window = capture.show({100, 80, 300, 240}, 1, QStringLiteral("a window"), 8);
    const QByteArray before = capture.fillClipboard();
    for (const QString& socket : {QString(), QStringLiteral("/dev/null")}) {
        capture.desktop().setEnvironmentVariable(QStringLiteral("SWAYSOCK"), socket);
        ChildProcess& tool = capture.launch({kWindowMode});
        EXPECT_EQ(SwayCapture::exitCodeOf(tool), 3);
        EXPECT_EQ(tool.output().count('\n'), 1);
    }
    EXPECT_EQ(capture.desktop().clipboard(), before);
    // Space then leads nowhere.
    ChildProcess* tool = capture.open();
    ASSERT_TRUE(tool);
    capture.input().moveTo({200, 200});
    capture.input().key({"space"});
    capture.drag({120, 100}, {180, 160});
    ASSERT_EQ(SwayCapture::exitCodeOf(*tool), 0);
    EXPECT_TRUE(samePicture(capture.desktop().clipboardImage(), window->picture().copy(20, 20, 60, 60)));
}

} // namespace
} // namespace framora
