#include "editor/render/raster/ScenePaint.h"

#include "editor/render/raster/SharedEdge.h"

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
        const ScenePaint paint({}, width, height, toCanvas(scale, width, height), columns, rows);
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

/// Scenes of one colour and of some, and on canvases of every form; `check(paint, rows, tolerance)`.
template <typename Check> void forEachScene(const Check& check) {
    const Float4 blue = premultiplied(0.2, 0.4, 1, 0.3);
    const Float4 red = premultiplied(1, 0, 0.1, 0.3);
    const Float4 grey = premultiplied(0.5, 0.5, 0.5, 0.15);
    for (const auto& tint : {std::vector{blue}, std::vector{blue, red}, std::vector{red, grey, blue}})
        for (const double opacity : {1.0, 0.4})
            for (const auto& [width, height] : {std::pair(300, 200), std::pair(100, 13), std::pair(8, 900)})
                for (const double scale : {1.3, 0.8}) {
                    SCOPED_TRACE(testing::Message() << tint.size() << " colours, " << opacity << ", " << width
                                                    << " x " << height << ", " << scale);
                    const ScenePaint paint({tint, opacity}, width, height, toCanvas(scale, width, height),
                                           int(width * scale), int(height * scale));
                    // Half a step of dither and some rounding.
                    const double tolerance = (tint.size() > 1 ? opacity * mixStep / 2 : 0) + 6;
                    check(paint, TileRect{1, 2, int(width * scale) - 2, int(height * scale) - 3}, tolerance);
                }
}

TEST(ScenePaint, MixesWhatItShades) {
    forEachScene([](const ScenePaint& paint, const TileRect& tile, double tolerance) {
        std::vector<MixPixel> mixed(tile.area());
        paint.mix(tile, mixed.data());
        std::vector<Float4> row(std::size_t(tile.width));
        for (int y = 0; y < tile.height; ++y) {
            paint.shade(tile.x, tile.y + y, tile.width, row.data());
            for (int x = 0; x < tile.width; ++x)
                for (int c = 0; c < 4; ++c)
                    ASSERT_NEAR(mixed[std::size_t(y * tile.width + x)].channel[c],
                                row[std::size_t(x)][c] * mixOne, c < 3 ? tolerance : 6)
                        << x << ", " << y;
        }
    });
}

TEST(ScenePaint, OverlaysWhatItShades) {
    const auto colorAt = [](int x, int y) {
        const float alpha = (x / 40 + y / 40) % 3 == 0 ? float(y % 7) / 6 : 1.0f;
        return Float4{float(x % 11) / 10, float((x + y) % 6) / 5, float(y % 5) / 4, 1} * splat(alpha);
    };
    forEachScene([&](const ScenePaint& paint, const TileRect& tile, double tolerance) {
        const int stride = tile.width + 3;
        std::vector<MixPixel> mixed(std::size_t(stride) * std::size_t(tile.height));
        for (int y = 0; y < tile.height; ++y)
            for (int x = 0; x < stride; ++x)
                mixed[std::size_t(y * stride + x)] = toMix(colorAt(x, y));
        ASSERT_TRUE(paint.overlay(tile, mixed.data(), stride));
        std::vector<Float4> row(std::size_t(tile.width));
        for (int y = 0; y < tile.height; ++y) {
            paint.shade(tile.x, tile.y + y, tile.width, row.data());
            for (int x = 0; x < stride; ++x) {
                const bool isInside = x < tile.width;
                const Float4 under = colorAt(x, y);
                const Float4 expected = isInside ? overlaid(under, row[std::size_t(x)]) : under;
                for (int c = 0; c < 4; ++c)
                    ASSERT_NEAR(mixed[std::size_t(y * stride + x)].channel[c], expected[c] * mixOne,
                                c < 3 && isInside ? tolerance : 6)
                        << x << ", " << y;
            }
        }
    });
}

TEST(ScenePaint, DoesNotDependOnTheTile) {
    const ScenePaint paint({{premultiplied(0, 0, 0, 0.3), premultiplied(1, 1, 1, 0.3)}, 0.7}, 300, 200,
                           toCanvas(1, 300, 200), 300, 200);
    const TileRect whole{0, 0, 300, 200};
    std::vector<MixPixel> mixed(whole.area());
    paint.mix(whole, mixed.data());
    for (const int x : {0, 7, 41, 270})
        for (const int y : {0, 5, 188}) {
            const TileRect tile{x, y, 30, 12};
            std::vector<MixPixel> part(tile.area());
            paint.mix(tile, part.data());
            for (int j = 0; j < tile.height; ++j)
                for (int i = 0; i < tile.width; ++i)
                    ASSERT_EQ(part[std::size_t(j * tile.width + i)],
                              mixed[std::size_t((y + j) * 300 + x + i)]);
        }
}

TEST(ScenePaint, LeavesAloneWhatItDoesNotTouch) {
    // Between two stripes of a scene without colours.
    const ScenePaint paint({}, 90, 67, toCanvas(4, 90, 67), 360, 268);
    std::vector<MixPixel> mixed(360, MixPixel{{1234, 17000, 32000, mixOne}});
    const auto before = mixed;
    ASSERT_TRUE(paint.overlay({0, 0, 360, 1}, mixed.data(), 360));
    int untouched = 0;
    for (std::size_t x = 0; x < mixed.size(); ++x)
        untouched += mixed[x] == before[x];
    EXPECT_NEAR(untouched / 360.0, 1 - std::numbers::sqrt2 / 2, 0.06);
}

} // namespace
} // namespace framora::raster
