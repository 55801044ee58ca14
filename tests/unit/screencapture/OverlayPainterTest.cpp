#include "screencapture/OverlayPainter.h"

#include "screencapture/MemoryImage.h"

#include <gtest/gtest.h>
#include <random>

namespace framora {
namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 220;

class OverlayPainterTest : public testing::Test {
protected:
    OverlayPainterTest() {
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x)
                frozen->row(y)[x] = static_cast<uint32_t>(x * 7 + y * 131) * 2654435761U;
    }

    static std::unique_ptr<PixelImage> image() { return MemoryImage::create(kWidth, kHeight); }
    static Rect whole() { return {0, 0, kWidth, kHeight}; }

    std::unique_ptr<PixelImage> frozen = image();
    std::unique_ptr<PixelImage> frame = image();
};

int differingPixels(const PixelImage& a, const PixelImage& b) {
    int count = 0;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            count += (a.row(y)[x] & 0xffffff) != (b.row(y)[x] & 0xffffff);
    return count;
}

OverlayScene randomScene(std::mt19937& random, SizeLabel& label) {
    const auto number = [&random](int from, int to) {
        return std::uniform_int_distribution(from, to)(random);
    };
    const Point a{number(0, kWidth), number(0, kHeight)};
    const Point b{number(0, kWidth), number(0, kHeight)};
    OverlayScene scene;
    switch (number(0, 3)) {
    case 0:
        scene.highlight = Rect::between(a, b);
        scene.inView = subtracted({scene.highlight}, {number(0, kWidth), number(0, kHeight), 90, 70});
        break;
    case 1:
        scene.guides = OverlayScene::Guides{{a.x - 1, a.y - 1}, Rect{0, 0, 200, kHeight}};
        break;
    default:
        scene.selection = Rect::between(a, b);
        if (!scene.selection.empty())
            scene.label =
                OverlayScene::Label{label.measured(a.x, b.y).translated(b.x - 40, b.y - 30), a.x, b.y};
        break;
    }
    return scene;
}

TEST_F(OverlayPainterTest, paintingOnlyTheDifferenceGivesTheWholeScene) {
    const auto reference = image();
    for (const double ratio : {1.0, 2.0}) {
        OverlayPainter partly(*frozen, *frame, ratio);
        OverlayPainter wholly(*frozen, *reference, ratio);
        std::mt19937 random(7);
        OverlayScene shown;
        partly.paint(shown, whole());
        for (int step = 0; step < 200; ++step) {
            const OverlayScene next = randomScene(random, partly.label());
            for (const Rect& part : partly.difference(shown, next))
                partly.paint(next, part);
            shown = next;
            wholly.paint(next, whole());
            ASSERT_EQ(differingPixels(*frame, *reference), 0) << "step " << step << " ratio " << ratio;
        }
    }
}

TEST_F(OverlayPainterTest, theSelectionShowsTheScreenAsItWas) {
    OverlayPainter painter(*frozen, *frame, 1);
    OverlayScene scene;
    scene.selection = {40, 30, 120, 80};
    painter.paint(scene, whole());
    for (int y = 30; y < 110; ++y)
        for (int x = 40; x < 160; ++x)
            ASSERT_EQ(frame->row(y)[x] & 0xffffff, frozen->row(y)[x] & 0xffffff) << x << "," << y;
}

TEST_F(OverlayPainterTest, aSelectionThatGoesOnBeyondTheFrameHasNoLineThere) {
    // The screen goes on to the right by as much again; it ends with the frame at the bottom.
    OverlayPainter painter(*frozen, *frame, 1, {0, 0, 2 * kWidth, kHeight});
    OverlayScene scene;
    scene.selection = {40, 30, kWidth, kHeight - 30};
    painter.paint(scene, whole());
    for (int y = 30; y < kHeight - 2; ++y)
        ASSERT_EQ(frame->row(y)[kWidth - 1] & 0xffffff, frozen->row(y)[kWidth - 1] & 0xffffff) << y;
    int lines = 0;
    for (int x = 40; x < kWidth; ++x)
        lines += (frame->row(kHeight - 1)[x] & 0xffffff) != (frozen->row(kHeight - 1)[x] & 0xffffff);
    EXPECT_GT(lines, kWidth / 2);
}

TEST_F(OverlayPainterTest, whatCoversAHighlightedWindowStaysDimmed) {
    OverlayPainter painter(*frozen, *frame, 1);
    const auto dimmed = image();
    OverlayPainter(*frozen, *dimmed, 1).paint({}, whole());
    OverlayScene scene;
    scene.highlight = {40, 30, 200, 150};
    const Rect cover{100, 80, 180, 140};
    scene.inView = subtracted({scene.highlight}, cover);
    painter.paint(scene, whole());
    for (int y = cover.y; y < 170; ++y)
        for (int x = cover.x; x < 230; ++x)
            ASSERT_EQ(frame->row(y)[x] & 0xffffff, dimmed->row(y)[x] & 0xffffff) << x << "," << y;
    EXPECT_GT(frame->row(50)[60] & 0xff, frozen->row(50)[60] & 0xff) << "tinted where it is in view";
}

TEST_F(OverlayPainterTest, theGuidesStandOutFromEveryTone) {
    OverlayPainter painter(*frozen, *frame, 1);
    for (const uint32_t tone : {0U, 0x40U, 0x80U, 0xc0U, 0xffU}) {
        for (int y = 0; y < kHeight; ++y)
            std::fill_n(frozen->row(y), kWidth, tone * 0x010101U);
        OverlayScene scene;
        scene.guides = OverlayScene::Guides{{150, 100}, whole()};
        painter.paint(scene, whole());
        const auto green = [&](int x, int y) { return static_cast<int>(frame->row(y)[x] >> 8 & 255); };
        for (const auto& [line, beside] : {std::pair{Point{20, 100}, Point{20, 99}}, {{150, 20}, {151, 20}}})
            EXPECT_GT(green(line.x, line.y) - green(beside.x, beside.y), 120) << tone;
    }
}

TEST_F(OverlayPainterTest, everythingElseIsDimmedAndStaysReadable) {
    OverlayPainter painter(*frozen, *frame, 1);
    painter.paint({}, whole());
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            for (const int shift : {0, 8, 16}) {
                const int before = static_cast<int>(frozen->row(y)[x] >> shift & 255);
                const int after = static_cast<int>(frame->row(y)[x] >> shift & 255);
                ASSERT_NEAR(after, before * 0.625, 2);
            }
}

TEST_F(OverlayPainterTest, aSmallMoveRepaintsLittle) {
    OverlayPainter painter(*frozen, *frame, 1);
    OverlayScene before;
    OverlayScene after;
    before.selection = {20, 20, 250, 150};
    after.selection = {20, 20, 252, 151};
    long pixels = 0;
    for (const Rect& part : painter.difference(before, after))
        pixels += static_cast<long>(part.width) * part.height;
    EXPECT_LT(pixels, kWidth * kHeight / 5);
    EXPECT_TRUE(painter.difference(after, after).empty());
}

TEST_F(OverlayPainterTest, theLabelIsWideEnoughForItsNumbersAndGrowsWithTheRatio) {
    OverlayPainter painter(*frozen, *frame, 1);
    const Rect one = painter.label().measured(8, 8);
    const Rect four = painter.label().measured(3840, 2160);
    EXPECT_GT(four.width, one.width);
    EXPECT_EQ(painter.label().measured(1111, 1111).width, painter.label().measured(8888, 8888).width);
    OverlayPainter twice(*frozen, *frame, 2);
    EXPECT_NEAR(twice.label().measured(3840, 2160).width, 2 * four.width, 3);
}

} // namespace
} // namespace framora
