#include "editor/render/raster/GlassPaint.h"

#include "editor/render/raster/BlurTaps.h"
#include "editor/render/raster/BlurredPaint.h"
#include "editor/render/raster/MixKernels.h"
#include "editor/render/raster/ParallelFor.h"
#include "editor/render/raster/SolidPaint.h"
#include "unit/raster/EachTarget.h"

#include <cmath>
#include <gtest/gtest.h>

namespace framora::raster {
namespace {

constexpr int width = 200;
constexpr int height = 150;
constexpr RoundedRect card{120, 90, 20};

Placement inTheMiddle() {
    return {Homography::translation(width / 2.0, height / 2.0), {}};
}

/// A paint that is white from a column on and black before it.
class StepPaint : public Paint {
public:
    explicit StepPaint(int column) : m_column(column) {}
    void shade(int x, int, int count, Float4* out) const override {
        for (int i = 0; i < count; ++i)
            out[i] = x + i < m_column ? Float4{0, 0, 0, 1} : splat(1);
    }
    bool isOpaque() const override { return true; }

private:
    int m_column;
};

std::vector<Layer> behind(std::shared_ptr<const Paint> paint) {
    return {{{1000, 1000, 0}, {}, inTheMiddle(), std::move(paint), {}, {}}};
}

std::shared_ptr<const GlassWindow> window(const RoundedRect& shape, const Placement& placement,
                                          const std::optional<RoundedRect>& hidden = {}) {
    return std::make_shared<GlassWindow>(Coverage(shape.outline(placement)),
                                         hidden ? Coverage(hidden->outline(placement)) : Coverage(), width,
                                         height);
}

std::shared_ptr<const GlassBackdrop> blurred(const std::vector<Layer>& layers, const GlassWindow& seen,
                                             double deviation, int reach) {
    return GlassBackdrop::create(seen, deviation, reach, layers);
}

GlassPaint glassOver(const std::vector<Layer>& layers, double deviation, const GlassPaint::Look& look,
                     const std::optional<RoundedRect>& hidden = {}) {
    const auto seen = window(card, inTheMiddle(), hidden);
    return GlassPaint(blurred(layers, *seen, deviation, int(std::ceil(look.bend))), seen, card, inTheMiddle(),
                      look);
}

Float4 colorAt(const Paint& paint, int x, int y) {
    Float4 color;
    paint.shade(x, y, 1, &color);
    return color;
}

TEST(GlassWindow, TellsWhatIsSeen) {
    const auto seen = window(card, inTheMiddle(), RoundedRect{100, 70, 0}); // a frame of ten pixels
    const auto columns = [&](int top, int bottom, int outwards, int inwards) {
        std::vector<std::pair<int, int>> runs;
        for (const auto& [first, end] : seen->strip(top, bottom, outwards, inwards).seen())
            if (first < end)
                runs.emplace_back(first, end);
        return runs;
    };
    using Runs = std::vector<std::pair<int, int>>;
    EXPECT_EQ(columns(75, 76, 0, 0), (Runs{{40, 50}, {150, 160}}));
    EXPECT_EQ(columns(75, 76, 1, 0), (Runs{{39, 50}, {150, 161}}));
    EXPECT_EQ(columns(75, 76, 0, 5), (Runs{{40, 55}, {145, 160}}));
    EXPECT_EQ(columns(75, 76, 0, 60), (Runs{{40, 160}}));
    EXPECT_EQ(columns(0, 30, 0, 0), Runs{});
    const auto above = columns(30, 41, 0, 0); // the hidden part begins in row 40
    ASSERT_EQ(above.size(), 1u);
    EXPECT_TRUE(above[0].first <= 50 && above[0].second >= 150);
}

TEST(GlassBackdrop, IsTheGaussianOfWhatLiesBehind) {
    const auto seen = window(card, inTheMiddle());
    for (const double deviation : {0.8, 3.5, 7.0, 13.0}) {
        const auto backdrop = blurred(behind(std::make_shared<StepPaint>(100)), *seen, deviation, 0);
        double worst = 0;
        for (int x = 45; x < 155; ++x) {
            const double exact = 0.5 * std::erfc((100 - (x + 0.5)) / (deviation * std::sqrt(2.0)));
            worst = std::max(worst, std::abs(double(backdrop->at(x + 0.5, 75.5)[1]) - exact));
        }
        EXPECT_LT(worst * 255, deviation < 1 ? 16 : 4) << deviation;
    }
}

/// Another paint's colours, of which nothing is known.
class UnknownPaint : public Paint {
public:
    explicit UnknownPaint(std::shared_ptr<const Paint> paint) : m_paint(std::move(paint)) {}
    void shade(int x, int y, int count, Float4* out) const override { m_paint->shade(x, y, count, out); }
    bool isOpaque() const override { return m_paint->isOpaque(); }

private:
    std::shared_ptr<const Paint> m_paint;
};

TEST(GlassBackdrop, OfWhatIsSoftAlreadyIsTheSameInLargerCells) {
    constexpr double softness = 24;
    const BlurAxis columns(width, softness);
    const BlurAxis rows(height, softness);
    BlurGrid grid = BlurGrid::reduced(StepPaint(90), columns, rows);
    grid.blur(columns, rows, softness);
    const auto soft = std::make_shared<BlurredPaint>(std::make_shared<const BlurGrid>(std::move(grid)),
                                                     columns, rows, 0, 0, width, height, true);
    ASSERT_GE(soft->blurDeviation(), softness / 2);
    ASSERT_LE(soft->blurDeviation(), softness) << "at least";
    const auto seen = window(card, inTheMiddle());
    const auto fine = blurred(behind(std::make_shared<UnknownPaint>(soft)), *seen, 3, 0);
    const auto coarse = blurred(behind(soft), *seen, 3, 0);
    // A sharp layer at its rim, and a plain one.
    std::vector<Layer> sharp = behind(soft);
    sharp.push_back(
        {{20, 20, 0}, {}, {Homography::translation(50, 75), {}}, std::make_shared<StepPaint>(50), {}, {}});
    const auto withSharp = blurred(sharp, *seen, 3, 0);
    sharp.front().paint = std::make_shared<UnknownPaint>(soft);
    const auto fineWithSharp = blurred(sharp, *seen, 3, 0);
    double furthest = 0;
    for (int y = 30; y < 120; ++y)
        for (int x = 40; x < 160; ++x) {
            furthest = std::max(furthest, std::abs(double(fine->at(x, y)[0] - coarse->at(x, y)[0])));
            ASSERT_NEAR(fineWithSharp->at(x, y)[0], withSharp->at(x, y)[0], 1.0 / 255) << x << ", " << y;
        }
    EXPECT_LT(furthest, 0.2 / 255);
    EXPECT_GT(furthest, 0) << "they are no larger";
}

TEST(GlassPaint, OverAPlainBlurredGroundIsPlain) {
    constexpr double softness = 64;
    const BlurAxis columns(width, softness);
    const BlurAxis rows(height, softness);
    BlurGrid grid =
        BlurGrid::reduced(SolidPaint(premultiplied(100 / 255.0, 50 / 255.0, 200 / 255.0, 1)), columns, rows);
    grid.blur(columns, rows, softness);
    const auto ground = std::make_shared<BlurredPaint>(std::make_shared<const BlurGrid>(std::move(grid)),
                                                       columns, rows, 0, 0, width, height, true);
    const auto layers = behind(ground);
    const GlassPaint glass = glassOver(layers, 1.75, {});
    const TileRect tile{62, 52, 76, 46};
    std::vector<MixPixel> mixed(tile.area());
    glass.mix(tile, mixed.data());
    std::vector<std::uint32_t> pixels(tile.area());
    packPixels(mixed.data(), mixed.size(), pixels.data());
    for (const std::uint32_t pixel : pixels)
        ASSERT_EQ(pixel, 0xff6432c8u);
}

TEST(GlassBackdrop, KeepsAPlainSurface) {
    const Float4 color = premultiplied(0.2, 0.7, 0.4, 0.6);
    const auto seen = window(card, inTheMiddle(), RoundedRect{100, 70, 10});
    const auto backdrop = blurred(behind(std::make_shared<SolidPaint>(color)), *seen, 6, 12);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const GlassWindow::Span& row = seen->row(y);
            if (x < row.first || x >= row.end || (x >= row.hiddenFirst + 12 && x < row.hiddenEnd - 12))
                continue;
            const Float4 there = backdrop->at(x + 0.5, y + 0.5);
            // Twelve pixels below the hiding edge, up and down as well.
            if (std::abs(y - height / 2) < 35 - 12 && x > 62 && x < 138)
                continue;
            for (int c = 0; c < 4; ++c)
                ASSERT_NEAR(there[c], color[c], 1e-4) << x << "," << y;
        }
}

TEST(GlassPaint, KnowsTheEdge) {
    EXPECT_DOUBLE_EQ(GlassPaint::edge(card, {55, 3}).depth, 5);
    EXPECT_DOUBLE_EQ(GlassPaint::edge(card, {55, 3}).outward.x, 1);
    EXPECT_DOUBLE_EQ(GlassPaint::edge(card, {-2, -41}).depth, 4);
    EXPECT_DOUBLE_EQ(GlassPaint::edge(card, {-2, -41}).outward.y, -1);
    // Along the diagonal of a corner the outline lies (1 - sqrt(1/2)) of the radius inside both sides.
    const double inset = (1 - std::numbers::sqrt2 / 2) * 20;
    const GlassPaint::Edge corner = GlassPaint::edge(card, {60 - inset - 2, -(45 - inset - 2)});
    EXPECT_NEAR(corner.depth, 2 * std::numbers::sqrt2, 0.1);
    EXPECT_NEAR(corner.outward.x, std::numbers::sqrt2 / 2, 1e-9);
    EXPECT_NEAR(corner.outward.y, -std::numbers::sqrt2 / 2, 1e-9);
}

TEST(GlassPaint, ShowsWhatLiesBehindUnderItsVeil) {
    const Float4 color = premultiplied(0.2, 0.7, 0.4, 1);
    const auto layers = behind(std::make_shared<SolidPaint>(color));
    GlassPaint::Look look{5, 7, premultiplied(1, 1, 1, 0.1), 0, 0};
    const GlassPaint glass = glassOver(layers, 4, look);
    for (const int x : {42, 70, 100})
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(colorAt(glass, x, 75)[c], color[c] * 0.9 + 0.1, 1e-3);
    look.glow = 0.5;
    look.shade = 0.2;
    const GlassPaint lit = glassOver(layers, 4, look);
    EXPECT_GT(colorAt(lit, 40, 75)[2], colorAt(glass, 40, 75)[2] + 0.1) << "towards the light";
    EXPECT_LT(colorAt(lit, 157, 75)[2], colorAt(glass, 157, 75)[2] - 0.005) << "away from it";
    EXPECT_EQ(colorAt(lit, 100, 75)[2], colorAt(glass, 100, 75)[2]) << "flat";
}

TEST(GlassPaint, BendsWhatItsRimShows) {
    // The step lies five pixels inside; the rim, six pixels wide, sees across it from its very edge.
    const auto layers = behind(std::make_shared<StepPaint>(45));
    const GlassPaint straight = glassOver(layers, 1, {6, 0, splat(0), 0, 0});
    const GlassPaint bent = glassOver(layers, 1, {6, 9, splat(0), 0, 0});
    EXPECT_LT(colorAt(straight, 40, 75)[0], 0.01);
    EXPECT_GT(colorAt(bent, 40, 75)[0], 0.95);
    for (const int x : {46, 48, 60, 100})
        EXPECT_NEAR(colorAt(straight, x, 75)[0], colorAt(bent, x, 75)[0], 1e-6) << x;
    // Over the far end nothing is near the step.
    EXPECT_EQ(colorAt(straight, 158, 75)[0], colorAt(bent, 158, 75)[0]);
}

TEST(GlassPaint, ReadsTheSameWhetherItsMiddleIsHiddenOrNot) {
    const auto layers = behind(std::make_shared<StepPaint>(77));
    const GlassPaint::Look look{8, 11, premultiplied(1, 1, 1, 0.1), 0.4, 0.1};
    const RoundedRect content{90, 60, 10};
    const GlassPaint whole = glassOver(layers, 3, look);
    const GlassPaint frame = glassOver(layers, 3, look, content);
    const auto seen = window(card, inTheMiddle(), content);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const GlassWindow::Span& row = seen->row(y);
            const bool isSeen = x >= row.first && x < row.end && !(x >= row.hiddenFirst && x < row.hiddenEnd);
            const Float4 a = isSeen ? colorAt(whole, x, y) : splat(0);
            const Float4 b = colorAt(frame, x, y);
            for (int c = 0; c < 4; ++c)
                ASSERT_EQ(a[c], b[c]) << x << "," << y;
        }
}

TEST(GlassPaint, MixesWhatItShadesToWithinAStep) {
    const GlassPaint glass =
        glassOver(behind(std::make_shared<StepPaint>(90)), 5, {8, 11, premultiplied(1, 1, 1, 0.1), 0.4, 0.1});
    const TileRect tile{30, 20, 128, 100};
    std::vector<MixPixel> mixed(tile.area());
    glass.mix(tile, mixed.data());
    std::vector<Float4> shaded(std::size_t(tile.width));
    for (int y = 0; y < tile.height; ++y) {
        glass.shade(tile.x, tile.y + y, tile.width, shaded.data());
        for (int x = 0; x < tile.width; ++x)
            for (int c = 0; c < 4; ++c)
                ASSERT_NEAR(mixed[std::size_t(y * tile.width + x)].channel[c],
                            shaded[std::size_t(x)][c] * mixOne, mixStep / 2)
                    << x << "," << y;
    }
}

TEST(GlassPaint, IsTheSameOnEveryVectorUnitAndWithAnyNumberOfThreads) {
    const auto layers = behind(std::make_shared<StepPaint>(90));
    const TileRect tile{30, 20, 128, 100};
    const auto drawn = [&] {
        std::vector<MixPixel> mixed(tile.area());
        glassOver(layers, 5, {8, 11, premultiplied(1, 1, 1, 0.1), 0.4, 0.1}).mix(tile, mixed.data());
        return mixed;
    };
    const auto usual = drawn();
    forEachTarget([&](const char* target) { EXPECT_EQ(drawn(), usual) << target; });
    for (const int threads : {1, 3}) {
        setParallelThreadLimit(threads);
        EXPECT_EQ(drawn(), usual) << threads;
    }
    setParallelThreadLimit(0);
}

} // namespace
} // namespace framora::raster
