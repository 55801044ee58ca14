#include "editor/render/raster/ScenePaint.h"

#include "editor/render/raster/SolidPaint.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

namespace framora::raster {
namespace {

/// Whether a point of the canvas, from its top left corner, lies in a stripe: the lines run from (x, 0) to
/// (x + height, height), for x from -height in steps of 40.
bool isWhite(double x, double y, double height) {
    const double fromFirst = x - y + height;
    const double nearest = std::round(fromFirst / 40) * 40;
    return std::abs(fromFirst - nearest) / std::numbers::sqrt2 <= 10;
}

Homography toCanvas(double scale, double width, double height) {
    return Homography::translation(-width / 2, -height / 2) * Homography::scaling(1 / scale, 1 / scale);
}

TEST(ScenePaint, CoversPixelsByTheAreaOfItsStripes) {
    constexpr double width = 90;
    constexpr double height = 67;
    for (const double scale : {2.0, 0.43}) {
        const int columns = int(width * scale);
        const int rows = int(height * scale);
        const ScenePaint paint(nullptr, width, height, toCanvas(scale, width, height), columns, rows);
        std::vector<Float4> row(static_cast<std::size_t>(columns));
        for (int y = 0; y < rows; ++y) {
            paint.shade(0, y, columns, row.data());
            for (int x = 0; x < columns; ++x) {
                constexpr int samples = 24;
                int white = 0;
                for (int i = 0; i < samples * samples; ++i)
                    white += isWhite((x + (i % samples + 0.5) / samples) / scale,
                                     (y + (i / samples + 0.5) / samples) / scale, height);
                ASSERT_NEAR(row[std::size_t(x)][3], white / double(samples * samples), 0.05)
                    << x << ", " << y;
            }
        }
    }
}

TEST(ScenePaint, MixesWhatItShades) {
    const auto tint = std::make_shared<SolidPaint>(premultiplied(0.2, 0.4, 1, 0.3));
    const ScenePaint paint(tint, 300, 200, toCanvas(1.3, 300, 200), 390, 260);
    const TileRect tile{17, 40, 70, 9};
    std::vector<MixPixel> mixed(tile.area());
    paint.mix(tile, mixed.data());
    std::vector<Float4> row(70);
    for (int y = 0; y < tile.height; ++y) {
        paint.shade(tile.x, tile.y + y, tile.width, row.data());
        for (int x = 0; x < tile.width; ++x)
            for (int c = 0; c < 4; ++c)
                ASSERT_NEAR(mixed[std::size_t(y * tile.width + x)].channel[c],
                            row[std::size_t(x)][c] * mixOne, 4);
    }
}

} // namespace
} // namespace framora::raster
