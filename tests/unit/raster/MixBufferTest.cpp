#include "editor/render/raster/MixBuffer.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace framora::raster {
namespace {

constexpr int side = 41;

/// One white pixel in the middle of nothing.
MixBuffer point(int x, int y) {
    std::vector<std::uint32_t> pixels(side * side, 0u);
    pixels[side * (side / 2) + side / 2] = 0xffffffffu;
    return {{reinterpret_cast<const std::byte*>(pixels.data()), side, side, side * 4}, x, y};
}

TEST(MixBuffer, BlursByAGaussian) {
    constexpr double deviation = 3;
    MixBuffer buffer = point(0, 0);
    buffer.blur(deviation);
    double sum = 0;
    for (int i = -side / 2; i <= side / 2; ++i)
        sum += std::exp(-i * i / (2 * deviation * deviation));
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const double dx = x - side / 2;
            const double dy = y - side / 2;
            const double expected =
                std::exp(-(dx * dx + dy * dy) / (2 * deviation * deviation)) / (sum * sum) * mixOne;
            ASSERT_NEAR(buffer.row(y)[x].channel[3], expected, 2) << x << ", " << y;
        }
}

TEST(MixBuffer, FadesEveryChannel) {
    MixBuffer buffer = point(0, 0);
    buffer.fade(0.25);
    EXPECT_NEAR(buffer.row(side / 2)[side / 2].channel[0], mixOne / 4, 1);
    EXPECT_NEAR(buffer.row(side / 2)[side / 2].channel[3], mixOne / 4, 1);
    buffer.fade(0);
    EXPECT_EQ(buffer.row(side / 2)[side / 2], MixPixel{});
}

TEST(MixBufferPaint, ShowsTheBlockWhereItLiesAndNothingBeyond) {
    const MixBufferPaint paint(std::make_shared<MixBuffer>(point(100, -7)));
    const TileRect tile{90, -12, 64, 60};
    std::vector<MixPixel> pixels(tile.area(), MixPixel{{1, 1, 1, 1}});
    paint.mix(tile, pixels.data());
    for (int y = 0; y < tile.height; ++y)
        for (int x = 0; x < tile.width; ++x) {
            const bool isPoint = tile.x + x == 100 + side / 2 && tile.y + y == -7 + side / 2;
            ASSERT_EQ(pixels[std::size_t(y * tile.width + x)].channel[3], isPoint ? mixOne : 0);
        }
}

} // namespace
} // namespace framora::raster
