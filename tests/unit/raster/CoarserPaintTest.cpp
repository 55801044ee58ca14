#include "editor/render/raster/BlurredPaint.h"
#include "editor/render/raster/GradientPaint.h"
#include "editor/render/raster/SolidPaint.h"

#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace framora::raster {
namespace {

constexpr int width = 203;
constexpr int height = 130;

/// The furthest that a coarser paint is from the mean of the pixels that each of its own stands for, in steps
/// of 255.
double furthest(const Paint& paint, const Paint& coarser, int cell) {
    std::vector<Float4> fine(std::size_t(width) * height);
    for (int y = 0; y < height; ++y)
        paint.shade(0, y, width, fine.data() + std::ptrdiff_t(y) * width);
    double most = 0;
    for (int y = 0; y + cell <= height; y += cell)
        for (int x = 0; x + cell <= width; x += cell) {
            Float4 sum = splat(0);
            for (int i = 0; i < cell * cell; ++i)
                sum += fine[std::size_t(y + i / cell) * width + std::size_t(x + i % cell)];
            Float4 one;
            coarser.shade(x / cell, y / cell, 1, &one);
            for (int c = 0; c < 4; ++c)
                most = std::max(most, 255.0 * std::abs(double(one[c] - sum[c] / float(cell * cell))));
        }
    return most;
}

std::vector<Float4> threeColors() {
    return {premultiplied(1, 0.2, 0, 1), premultiplied(0, 0.9, 0.4, 1), premultiplied(0.1, 0, 1, 1)};
}

GradientPaint gradient(GradientPaint::Kind kind) {
    return GradientPaint(kind, 130, width, height, threeColors(),
                         Homography::translation(-width / 2.0, -height / 2.0));
}

std::shared_ptr<const Paint> blurred(double deviation) {
    const BlurAxis columns(150, deviation);
    const BlurAxis rows(97, deviation);
    const GradientPaint sharp(GradientPaint::Kind::angular, 20, 150, 97, threeColors(),
                              Homography::translation(-75, -48.5));
    BlurGrid grid = BlurGrid::reduced(sharp, columns, rows);
    grid.blur(columns, rows, deviation);
    // The canvas is smaller than the output, so that its edges are seen.
    return std::make_shared<BlurredPaint>(std::make_shared<const BlurGrid>(std::move(grid)), columns, rows,
                                          21.5, 11, width, height, true);
}

TEST(CoarserPaint, OfOneColourIsThatColour) {
    const SolidPaint paint(premultiplied(0.3, 0.6, 0.9, 0.5));
    for (const int cell : {2, 4, 8, 16})
        EXPECT_LT(furthest(paint, *paint.coarser(cell), cell), 0.001);
}

TEST(CoarserPaint, OfAGradientIsItsMean) {
    for (const auto kind : {GradientPaint::Kind::linear, GradientPaint::Kind::radial}) {
        const GradientPaint paint = gradient(kind);
        for (const int cell : {2, 4, 8, 16}) {
            const auto coarser = paint.coarser(cell);
            ASSERT_TRUE(coarser);
            EXPECT_TRUE(coarser->isOpaque());
            const double bend = kind == GradientPaint::Kind::linear ? 0.5 : 0.85; // at a stop, in a middle
            EXPECT_LT(furthest(paint, *coarser, cell), bend * cell);
        }
    }
}

TEST(CoarserPaint, OfAGradientWithAnEdgeThereIsNone) {
    EXPECT_FALSE(gradient(GradientPaint::Kind::angular).coarser(2));
}

TEST(CoarserPaint, OfAWideBlurIsItsMean) {
    for (const double deviation : {16.0, 37.0, 80.0})
        for (const int cell : {2, 4, 8, 16}) {
            const auto paint = blurred(deviation);
            const auto coarser = paint->coarser(cell);
            EXPECT_TRUE(coarser || deviation < 8 * cell) << deviation << ", " << cell;
            if (coarser) {
                EXPECT_LT(furthest(*paint, *coarser, cell), 1) << deviation << ", " << cell;
            }
        }
}

TEST(CoarserPaint, OfABlurThatIsFinerThanItsCellsThereIsNone) {
    EXPECT_FALSE(blurred(5)->coarser(2));
    EXPECT_FALSE(blurred(16)->coarser(16));
}

TEST(CoarserPaint, IsMixedAsItIsShaded) {
    const auto coarser = blurred(40)->coarser(4);
    ASSERT_TRUE(coarser);
    const TileRect tile{3, 5, 40, 20};
    std::vector<MixPixel> mixed(tile.area());
    coarser->mix(tile, mixed.data());
    std::vector<Float4> row(std::size_t(tile.width));
    for (int y = 0; y < tile.height; ++y) {
        coarser->shade(tile.x, tile.y + y, tile.width, row.data());
        for (int x = 0; x < tile.width; ++x)
            for (int c = 0; c < 4; ++c)
                ASSERT_NEAR(mixed[std::size_t(y * tile.width + x)].channel[c],
                            mixOne * row[std::size_t(x)][c], 2);
    }
}

} // namespace
} // namespace framora::raster
