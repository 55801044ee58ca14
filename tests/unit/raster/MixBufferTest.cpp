#include "editor/render/raster/MixBuffer.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace framora::raster {
namespace {

constexpr int side = 41;

/// One white pixel in the middle of nothing.
MixBuffer point(int x, int y) {
    MixBuffer buffer({x, y, side, side});
    std::fill_n(buffer.row(0), buffer.area().area(), MixPixel{});
    buffer.row(side / 2)[side / 2] = {{mixOne, mixOne, mixOne, mixOne}};
    return buffer;
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
