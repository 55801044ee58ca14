#include "desktop/wayland/capture/SwayCapture.h"
#include "screencapture/OverlayPainter.h"
#include "screencapture/wayland/OutputList.h"
#include "screencapture/wayland/Screencopy.h"
#include "screencapture/wayland/WaylandConnection.h"

#include <cmath>

namespace framora {
namespace {

SwayOutput output(QSize mode, double scale, QPoint position, const char* transform = "normal") {
    return {mode, scale, position, QLatin1String(transform)};
}

int dotsPerMetre(double scale) {
    return static_cast<int>(std::lround(72 * scale / 0.0254));
}

class SwayAreaScaleTest : public testing::TestWithParam<double> {};

TEST_P(SwayAreaScaleTest, anAreaIsCopiedBitForBitAndTellsItsRatio) {
    const double scale = GetParam();
    SwayCapture capture({output(QSize(800, 600) * scale, scale, {0, 0})});
    ChildProcess* tool = capture.open();
    ASSERT_TRUE(tool);
    capture.drag({100, 80}, {340, 280});
    ASSERT_EQ(SwayCapture::exitCodeOf(*tool), 0);
    const QImage picture = capture.desktop().clipboardImage();
    const auto at = [scale](int logical) { return int(std::lround(logical * scale)); };
    EXPECT_TRUE(samePicture(picture, capture.background().copy(at(100), at(80), at(240), at(200))));
    EXPECT_EQ(picture.dotsPerMeterX(), dotsPerMetre(scale));
    EXPECT_TRUE(samePicture(capture.desktop().settledScreenshot(), capture.background()));
}

TEST_P(SwayAreaScaleTest, theOverlayShowsTheScreenPixelForPixel) {
    const double scale = GetParam();
    SwayCapture capture({output(QSize(800, 600) * scale, scale, {0, 0})});
    ChildProcess* tool = capture.open();
    ASSERT_TRUE(tool);
    capture.input().moveTo({100, 80});
    capture.input().press();
    const QImage before = capture.desktop().screenshot();
    capture.input().moveTo({500, 480});
    ASSERT_TRUE(capture.screenChangesFrom(before));
    const QImage screen = capture.desktop().settledScreenshot();
    const auto at = [scale](int logical) { return int(std::lround(logical * scale)); };
    // Lit as it was, but for the pointer at its corner; dimmed beside it, by one rule for every pixel.
    const QRect lit(at(100), at(80), at(360), at(360));
    EXPECT_TRUE(samePicture(screen.copy(lit), capture.background().copy(lit)));
    const QRect dark(at(520), at(60), at(200), at(300));
    QImage dimmed = capture.background().copy(dark);
    for (int y = 0; y < dimmed.height(); ++y)
        for (int x = 0; x < dimmed.width(); ++x) {
            const QColor c = dimmed.pixelColor(x, y);
            const auto part = [](int channel) {
                const int t = channel * 159 + 128;
                return (t + (t >> 8)) >> 8;
            };
            dimmed.setPixelColor(x, y, QColor(part(c.red()), part(c.green()), part(c.blue())));
        }
    EXPECT_TRUE(samePicture(screen.copy(dark), dimmed));
    capture.input().release();
    EXPECT_EQ(SwayCapture::exitCodeOf(*tool), 0);
}

INSTANTIATE_TEST_SUITE_P(scales, SwayAreaScaleTest, testing::Values(1, 1.25, 1.5, 2));

/// The outputs as the compositor composes them; other programs may smooth them where a logical size is not
/// exact.
std::vector<std::unique_ptr<PixelImage>> composed(const QString& display) {
    qputenv("WAYLAND_DISPLAY", display.toUtf8());
    WaylandConnection connection;
    OutputList list(connection);
    EXPECT_TRUE(connection.roundtrip());
    return Screencopy(connection).freeze(list.take());
}

uint32_t dimmed(uint32_t pixel) {
    uint32_t result = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const uint32_t t = (pixel >> shift & 255) * (255 - OverlayPainter::kDim) + 128;
        result |= ((t + (t >> 8)) >> 8) << shift;
    }
    return result;
}

TEST(SwayAreaTest, theOverlayIsCrispWhereTheScaleDoesNotDivideThePixels) {
    for (const double scale : {1.25, 1.5, 1.75}) {
        SwayCapture capture({output({1366, 769}, scale, {0, 0})});
        const auto before = composed(capture.desktop().waylandDisplay());
        ChildProcess* tool = capture.open();
        ASSERT_TRUE(tool);
        capture.desktop().settledScreenshot();
        const auto overlay = composed(capture.desktop().waylandDisplay());
        ASSERT_EQ(before.size(), 1U);
        ASSERT_EQ(overlay.size(), 1U);
        // The pointer's guides cross it somewhere; the last row and column may lie beyond the surface.
        int wrong = 0;
        for (int y = 0; y < 768; ++y)
            for (int x = 0; x < 1365; ++x)
                wrong += (overlay[0]->row(y)[x] & 0xffffffU) != dimmed(before[0]->row(y)[x] & 0xffffffU);
        EXPECT_LT(wrong, 4 * (1366 + 769)) << scale;
        capture.input().key({"Escape"});
        EXPECT_EQ(SwayCapture::exitCodeOf(*tool), 1);
    }
}

class SwayAreaTurnTest : public testing::TestWithParam<const char*> {};

TEST_P(SwayAreaTurnTest, aTurnedOutputIsCapturedAsTheUserSeesIt) {
    SwayCapture capture({output({640, 400}, 1, {0, 0}, GetParam())});
    ChildProcess* tool = capture.open();
    ASSERT_TRUE(tool);
    capture.drag({50, 60}, {250, 360});
    ASSERT_EQ(SwayCapture::exitCodeOf(*tool), 0);
    EXPECT_TRUE(samePicture(capture.desktop().clipboardImage(), capture.background().copy(50, 60, 200, 300)));
}

INSTANTIATE_TEST_SUITE_P(turns, SwayAreaTurnTest,
                         testing::Values("90", "180", "270", "flipped", "flipped-90", "flipped-180",
                                         "flipped-270"));

TEST(SwayAreaTest, theWholeOutputCanBeSelected) {
    // A size that the scale does not divide: the logical one is cut, the pixels are all there.
    SwayCapture capture({output({1001, 701}, 1.5, {0, 0})});
    const auto window = capture.show({0, 0, 600, 400}, 1.5, QStringLiteral("a window"), 7);
    ChildProcess* tool = capture.open();
    ASSERT_TRUE(tool);
    const QRect area = capture.desktop().outputArea(0);
    ASSERT_EQ(area.size(), QSize(667, 467));
    capture.drag({0, 0}, {666.99, 466.99});
    ASSERT_EQ(SwayCapture::exitCodeOf(*tool), 0);
    const QImage picture = capture.desktop().clipboardImage();
    EXPECT_EQ(picture.size(), QSize(1001, 701));
    EXPECT_TRUE(samePicture(picture.copy(0, 0, 900, 600), window->picture()));
}

TEST(SwayAreaTest, aDragOverOutputsOfOneScaleIsExactAndHolesAreTransparent) {
    SwayCapture capture({output({600, 399}, 1.5, {0, 0}), output({600, 600}, 1.5, {400, 0})});
    ChildProcess* tool = capture.open();
    ASSERT_TRUE(tool);
    capture.drag({300, 200}, {600, 360});
    ASSERT_EQ(SwayCapture::exitCodeOf(*tool), 0);
    // The left output ends 266 logical pixels down, at its 399th pixel.
    const QImage picture = capture.desktop().clipboardImage();
    ASSERT_EQ(picture.size(), QSize(450, 240));
    EXPECT_TRUE(samePicture(picture.copy(0, 0, 150, 99), capture.background(0).copy(450, 300, 150, 99)));
    EXPECT_TRUE(samePicture(picture.copy(150, 0, 300, 240), capture.background(1).copy(0, 300, 300, 240)));
    QImage hole(150, 141, QImage::Format_ARGB32);
    hole.fill(Qt::transparent);
    EXPECT_TRUE(samePicture(picture.copy(0, 99, 150, 141), hole));
}

TEST(SwayAreaTest, aDragLivesInThePixelsOfTheOutputWhereItBegan) {
    const std::vector<SwayOutput> outputs{output({600, 400}, 1, {0, 0}), output({1000, 800}, 2, {600, 0})};
    for (const bool fromFine : {false, true}) {
        SwayCapture capture(outputs);
        ChildProcess* tool = capture.open();
        ASSERT_TRUE(tool);
        const QPointF coarse(500, 100);
        const QPointF fine(700, 220);
        capture.drag(fromFine ? fine : coarse, fromFine ? coarse : fine);
        ASSERT_EQ(SwayCapture::exitCodeOf(*tool), 0);
        const int scale = fromFine ? 2 : 1;
        const QImage picture = capture.desktop().clipboardImage();
        ASSERT_EQ(picture.size(), QSize(200, 120) * scale);
        EXPECT_EQ(picture.dotsPerMeterX(), dotsPerMetre(scale));
        if (fromFine)
            EXPECT_TRUE(
                samePicture(picture.copy(200, 0, 200, 240), capture.background(1).copy(0, 200, 200, 240)));
        else
            EXPECT_TRUE(
                samePicture(picture.copy(0, 0, 100, 120), capture.background(0).copy(500, 100, 100, 120)));
        // The part at another scale is the same picture, smoothed: the same mean, nothing empty.
        const QImage there = fromFine ? picture.copy(2, 2, 196, 236) : picture.copy(101, 1, 98, 118);
        const QImage expected = (fromFine ? capture.background(0).copy(501, 101, 98, 118)
                                          : capture.background(1).copy(2, 202, 196, 236));
        const QColor mean =
            there.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixelColor(0, 0);
        const QColor same =
            expected.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixelColor(0, 0);
        EXPECT_EQ(mean.alpha(), 255);
        EXPECT_NEAR(mean.red(), same.red(), 3);
        EXPECT_NEAR(mean.green(), same.green(), 3);
        EXPECT_NEAR(mean.blue(), same.blue(), 3);
    }
}

TEST(SwayAreaTest, eachOutputIsCapturedInItsOwnPixels) {
    SwayCapture capture({output({600, 400}, 1, {0, 0}), output({1000, 800}, 2, {600, 0}),
                         output({750, 500}, 1.25, {0, 400}), output({400, 300}, 1, {600, 400}, "90")});
    const struct {
        int output;
        QPointF from, to;
        QRect pixels;
        double scale;
    } cases[] = {
        {1, {620, 10}, {820, 110}, {40, 20, 400, 200}, 2},
        {2, {40, 440}, {240, 640}, {50, 50, 250, 250}, 1.25},
        {3, {610, 420}, {810, 720}, {10, 20, 200, 300}, 1},
        {0, {10, 10}, {210, 310}, {10, 10, 200, 300}, 1},
    };
    for (const auto& one : cases) {
        ChildProcess* tool = capture.open();
        ASSERT_TRUE(tool);
        capture.drag(one.from, one.to);
        ASSERT_EQ(SwayCapture::exitCodeOf(*tool), 0);
        const QImage picture = capture.desktop().clipboardImage();
        EXPECT_TRUE(samePicture(picture, capture.background(one.output).copy(one.pixels))) << one.output;
        EXPECT_EQ(picture.dotsPerMeterX(), dotsPerMetre(one.scale));
    }
}

} // namespace
} // namespace framora
