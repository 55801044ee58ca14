#include "editor/render/raster/BlurredPaint.h"
#include "editor/render/raster/FineBlurredPaint.h"
#include "editor/render/raster/GradientPaint.h"
#include "editor/render/raster/MixKernels.h"
#include "editor/render/raster/ParallelFor.h"
#include "editor/render/raster/PicturePaint.h"
#include "editor/render/raster/PixelBuffer.h"

#include "unit/raster/EachTarget.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <iostream>
#include <random>

namespace framora::raster {
namespace {

/// A pattern's value at a pixel, 0...1.
using Pattern = std::function<double(int x, int y)>;

double hashed(int x, int y) {
    std::mt19937 random(std::uint32_t(x * 7919 + y));
    random.discard(3);
    return double(random() >> 8) / double(1 << 24);
}

/// A picture with a pattern a channel, opaque unless there is a fourth.
PixelBuffer painted(int width, int height, const std::vector<Pattern>& patterns) {
    PixelBuffer picture = PixelBuffer::create(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const double alpha = patterns.size() > 3 ? patterns[3](x, y) : 1;
            auto pixel = std::uint32_t(std::lround(255 * alpha)) << 24;
            for (int c = 0; c < 3; ++c)
                pixel |= std::uint32_t(std::lround(255 * alpha * patterns[std::size_t(c)](x, y))) << (8 * c);
            picture.mutableView().row(y)[x] = pixel;
        }
    return picture;
}

/// Rows of pixels in doubles, channels 0...255.
using Exact = std::vector<std::array<double, 4>>;

Exact exact(PixelView picture) {
    Exact pixels;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            pixels.emplace_back();
            for (std::size_t c = 0; c < 4; ++c)
                pixels.back()[c] = picture.row(y)[x] >> (8 * c) & 255;
        }
    return pixels;
}

/// What a paint is, plainly.
Exact exact(const Paint& paint, int width, int height) {
    Exact pixels;
    std::vector<Float4> row(static_cast<std::size_t>(width));
    for (int y = 0; y < height; ++y) {
        paint.shade(0, y, width, row.data());
        for (const Float4& color : row)
            pixels.push_back({255.0 * double(color[0]), 255.0 * double(color[1]), 255.0 * double(color[2]),
                              255.0 * double(color[3])});
    }
    return pixels;
}

/// The true Gaussian of a picture whose edges repeat.
Exact trueBlur(const Exact& source, int width, int height, double deviation) {
    const int radius = int(std::ceil(6 * deviation));
    std::vector<double> weights;
    double total = 0;
    for (int i = -radius; i <= radius; ++i) {
        weights.push_back(std::exp(-i * i / (2 * deviation * deviation)));
        total += weights.back();
    }
    // Beyond an edge all pixels are one.
    const auto summed = [&](int place, int size, const auto& at) {
        std::array<double, 4> sum{};
        std::array<double, 2> beyond{};
        for (int i = -radius; i <= radius; ++i) {
            const double weight = weights[std::size_t(i + radius)] / total;
            if (place + i < 0)
                beyond[0] += weight;
            else if (place + i >= size)
                beyond[1] += weight;
            else
                for (std::size_t c = 0; c < 4; ++c)
                    sum[c] += weight * at(place + i)[c];
        }
        for (std::size_t c = 0; c < 4; ++c)
            sum[c] += beyond[0] * at(0)[c] + beyond[1] * at(size - 1)[c];
        return sum;
    };
    Exact across(source.size());
    Exact result(source.size());
    const auto index = [width](int x, int y) { return std::size_t(y) * std::size_t(width) + std::size_t(x); };
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            across[index(x, y)] = summed(
                x, width, [&](int at) -> const auto& { return source[index(at, y)]; });
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            result[index(x, y)] = summed(
                y, height, [&](int at) -> const auto& { return across[index(x, at)]; });
    return result;
}

/// A picture stretched over a canvas of whole pixels at (left, top) of a larger output, and blurred.
std::shared_ptr<const Paint> blurred(PixelView picture, const FineBlurredPaint::Canvas& canvas,
                                     int outputWidth, int outputHeight, double deviation) {
    const double width = canvas.right - canvas.left;
    const double height = canvas.bottom - canvas.top;
    if (deviation >= BlurAxis::leastDeviation) {
        const BlurAxis columns(width, deviation);
        const BlurAxis rows(height, deviation);
        auto grid = std::make_shared<BlurGrid>(BlurGrid::reduced(picture, columns, rows));
        grid->blur(columns, rows, deviation);
        return std::make_shared<BlurredPaint>(grid, columns, rows, canvas.left, canvas.top, outputWidth,
                                              outputHeight, true);
    }
    const int margin = gaussianRadius(deviation);
    Placement placement;
    placement.move(canvas.left + margin + width / 2, canvas.top + margin + height / 2);
    auto paint =
        std::make_shared<PicturePaint>(std::make_shared<PicturePyramid>(picture), width, height, placement,
                                       outputWidth + 2 * margin, outputHeight + 2 * margin);
    return std::make_shared<FineBlurredPaint>(paint, margin, deviation, canvas);
}

/// The paint on an output, drawn in tiles of any size.
std::vector<std::uint32_t> drawn(const Paint& paint, int width, int height) {
    std::vector<std::uint32_t> pixels(std::size_t(width) * std::size_t(height));
    constexpr int tileWidth = 61;
    constexpr int tileHeight = 23;
    std::vector<MixPixel> tile(tileWidth * tileHeight);
    for (int y = 0; y < height; y += tileHeight)
        for (int x = 0; x < width; x += tileWidth) {
            const TileRect rect{x, y, std::min(tileWidth, width - x), std::min(tileHeight, height - y)};
            paint.mix(rect, tile.data());
            for (int row = 0; row < rect.height; ++row)
                packPixels(tile.data() + std::ptrdiff_t(row) * rect.width, std::size_t(rect.width),
                           pixels.data() + std::size_t(y + row) * std::size_t(width) + x);
        }
    return pixels;
}

struct Errors {
    double drawn = 0; ///< Of the bytes, in steps of 255.
    double plain = 0; ///< Of shade(), which is neither rounded nor dithered.
};

Errors errorsOf(PixelView picture, double deviation) {
    // Beside the canvas the output goes on, as it does around a turned canvas.
    const FineBlurredPaint::Canvas canvas{5, 3, 5 + picture.width, 3 + picture.height};
    const int width = picture.width + 9;
    const int height = picture.height + 8;
    const auto paint = blurred(picture, canvas, width, height, deviation);
    const Exact expected = trueBlur(exact(picture), picture.width, picture.height, deviation);
    const auto pixels = drawn(*paint, width, height);
    Errors errors;
    std::vector<Float4> shades(static_cast<std::size_t>(width));
    for (int y = 0; y < height; ++y) {
        paint->shade(0, y, width, shades.data());
        for (int x = 0; x < width; ++x) {
            const int nearX = std::clamp(x - canvas.left, 0, picture.width - 1);
            const int nearY = std::clamp(y - canvas.top, 0, picture.height - 1);
            if (x < canvas.left || x >= canvas.right || y < canvas.top || y >= canvas.bottom)
                continue;
            const auto& wanted =
                expected[std::size_t(nearY) * std::size_t(picture.width) + std::size_t(nearX)];
            const std::uint32_t pixel = pixels[std::size_t(y) * std::size_t(width) + std::size_t(x)];
            for (int c = 0; c < 4; ++c) {
                errors.drawn =
                    std::max(errors.drawn, std::abs(double(pixel >> (8 * c) & 255) - wanted[std::size_t(c)]));
                errors.plain = std::max(errors.plain, std::abs(255.0 * double(shades[std::size_t(x)][c]) -
                                                               wanted[std::size_t(c)]));
            }
        }
    }
    return errors;
}

constexpr double testedDeviations[] = {0.4, 1, 2, 3.99, 4, 5, 7, 8, 16, 40, 200};

struct NamedPicture {
    const char* name;
    std::vector<Pattern> patterns;
};

const NamedPicture testedPictures[] = {
    {"single pixels",
     {[](int x, int y) { return x == 100 && y == 60; }, [](int x, int y) { return x == 0 && y == 0; },
      [](int x, int y) { return (x + 1) % 97 == 0 && (y + 1) % 61 == 0; }}},
    {"edges",
     {[](int x, int) { return x >= 75; }, [](int x, int y) { return 2 * x + 5 * y > 500; },
      [](int x, int y) { return (x < 1) != (y < 1); }}},
    {"chequers",
     {[](int x, int y) { return (x + y) % 2; }, [](int x, int y) { return (x / 7 + y / 7) % 2; },
      [](int x, int y) { return (x / 40 + y / 40) % 2; }}},
    {"noise",
     {[](int x, int y) { return hashed(x, y); }, [](int x, int y) { return hashed(x, y) > 0.5; },
      [](int x, int y) { return hashed(x / 9, y / 9) > 0.8; }}},
    {"waves near the cells'",
     {[](int x, int) { return 0.5 + 0.5 * std::cos(2 * 3.14159265358979 * x / 2.2); },
      [](int, int y) { return 0.5 + 0.5 * std::cos(2 * 3.14159265358979 * y / 4.3); },
      [](int x, int y) { return 0.5 + 0.5 * std::cos(2 * 3.14159265358979 * (x + y) / 17.5); }}},
    {"a scene",
     {[](int x, int y) { return 0.5 + 0.3 * std::sin(x / 23.0) + 0.2 * (hashed(x, y) - 0.5); },
      [](int x, int y) { return y > 70 + 20 * std::sin(x / 11.0) ? 0.3 + 0.1 * hashed(x, y) : 0.8; },
      [](int x, int y) { return std::hypot(x - 60, y - 40) < 30 ? 0.8 : 0.2 + y / 400.0; }}},
    {"a translucent scene",
     {[](int x, int) { return x % 50 / 49.0; }, [](int, int y) { return y % 31 / 30.0; },
      [](int x, int y) { return hashed(x, y); }, [](int x, int y) { return (x / 20 + y / 20) % 3 / 2.0; }}},
};

TEST(Blur, IsWithinAStepOfTheTrueGaussian) {
    const bool prints = std::getenv("FRAMORA_BLUR_TABLE") != nullptr;
    for (const NamedPicture& tested : testedPictures) {
        const PixelBuffer picture = painted(233, 141, tested.patterns);
        for (const double deviation : testedDeviations) {
            const Errors errors = errorsOf(picture.view(), deviation);
            EXPECT_LE(errors.drawn, 1) << tested.name << ", " << deviation;
            EXPECT_LE(errors.plain, 0.13) << tested.name << ", " << deviation;
            if (prints)
                std::cout << tested.name << " | " << deviation << " | " << errors.plain << " | "
                          << errors.drawn << "\n";
        }
    }
}

TEST(Blur, IsWithinAStepOnPicturesOfFewPixels) {
    for (const auto& [width, height] :
         {std::pair(1, 1), std::pair(2, 1), std::pair(1, 90), std::pair(7, 3)}) {
        const PixelBuffer picture =
            painted(width, height,
                    {[](int x, int y) { return (x + y) % 2; }, [](int x, int y) { return hashed(x, y); },
                     [](int, int y) { return y > 40; }});
        for (const double deviation : testedDeviations)
            EXPECT_LE(errorsOf(picture.view(), deviation).drawn, 1)
                << width << " x " << height << ", " << deviation;
    }
}

TEST(Blur, LeavesAPlainSurfaceAsItIs) {
    const PixelBuffer picture = painted(
        90, 70, {[](int, int) { return 0.2; }, [](int, int) { return 1; }, [](int, int) { return 0; }});
    for (const double deviation : testedDeviations)
        for (const std::uint32_t pixel :
             drawn(*blurred(picture.view(), {-20, 4, 300, 71}, 200, 80, deviation), 200, 80))
            ASSERT_EQ(pixel, 0xff00ff33u) << deviation;
}

double worstError(const std::vector<std::uint32_t>& pixels, const Exact& expected) {
    double worst = 0;
    for (std::size_t i = 0; i < pixels.size(); ++i)
        for (std::size_t c = 0; c < 4; ++c)
            worst = std::max(worst, std::abs(double(pixels[i] >> (8 * c) & 255) - expected[i][c]));
    return worst;
}

TEST(Blur, OfAStretchedPictureIsThatOfThePictureAsItIsDrawn) {
    const std::vector<Pattern>& scene = testedPictures[5].patterns;
    struct Size {
        int width, height;
    };
    for (const Size& size : {Size{11, 7}, Size{90, 300}, Size{260, 150}, Size{1400, 30}}) {
        const PixelBuffer picture = painted(size.width, size.height, scene);
        Placement placement;
        placement.move(233 / 2.0, 141 / 2.0);
        const Exact seen = exact(
            PicturePaint(std::make_shared<PicturePyramid>(picture.view()), 233, 141, placement, 233, 141),
            233, 141);
        for (const double deviation : {1.0, 3.0, 6.0, 40.0}) {
            const auto pixels =
                drawn(*blurred(picture.view(), {0, 0, 233, 141}, 233, 141, deviation), 233, 141);
            EXPECT_LE(worstError(pixels, trueBlur(seen, 233, 141, deviation)), 1)
                << size.width << " x " << size.height << ", " << deviation;
        }
    }
}

TEST(Blur, OfAPaintIsThatOfItsPixels) {
    // Even, so that no pixel's middle is the gradient's own, which has any direction.
    constexpr int width = 232;
    constexpr int height = 140;
    for (const auto kind :
         {GradientPaint::Kind::linear, GradientPaint::Kind::radial, GradientPaint::Kind::angular}) {
        const GradientPaint paint(kind, 30, width, height,
                                  {splat(1), Float4{0, 0.5f, 1, 1}, Float4{0, 0, 0, 1}},
                                  Homography::translation(-width / 2.0, -height / 2.0));
        const Exact seen = exact(paint, width, height);
        for (const double deviation : {4.0, 9.0, 40.0, 130.0}) {
            const BlurAxis columns(width, deviation);
            const BlurAxis rows(height, deviation);
            auto grid = std::make_shared<BlurGrid>(BlurGrid::reduced(paint, columns, rows));
            grid->blur(columns, rows, deviation);
            const auto pixels =
                drawn(BlurredPaint(grid, columns, rows, 0, 0, width, height, true), width, height);
            EXPECT_LE(worstError(pixels, trueBlur(seen, width, height, deviation)), 1)
                << int(kind) << ", " << deviation;
        }
    }
}

TEST(Blur, GivesTheSameBytesOnEveryVectorUnitAndForAnyNumberOfThreads) {
    const PixelBuffer picture = painted(301, 222, testedPictures[6].patterns);
    for (const double deviation : {1.5, 4.5, 33.0}) {
        const auto draw = [&] {
            return drawn(*blurred(picture.view(), {-9, 4, 281, 210}, 250, 190, deviation), 250, 190);
        };
        const auto first = draw();
        for (const int threads : {1, 2, 5}) {
            setParallelThreadLimit(threads);
            EXPECT_EQ(draw(), first) << threads << " threads, " << deviation;
        }
        setParallelThreadLimit(0);
        forEachTarget([&](const char* target) { EXPECT_EQ(draw(), first) << target << ", " << deviation; });
    }
}

TEST(Blur, IsTheSameWhereverTheOutputIsCut) {
    const PixelBuffer picture = painted(150, 120, testedPictures[5].patterns);
    for (const double deviation : {2.0, 11.0}) {
        const auto whole = drawn(*blurred(picture.view(), {8, 16, 178, 166}, 200, 184, deviation), 200, 184);
        // Moved by whole periods of the dither.
        const auto part = drawn(*blurred(picture.view(), {-64, -48, 106, 102}, 90, 80, deviation), 90, 80);
        for (int y = 0; y < 80; ++y)
            for (int x = 0; x < 90; ++x)
                ASSERT_EQ(part[std::size_t(y * 90 + x)], whole[std::size_t((y + 64) * 200 + x + 72)])
                    << deviation << ": " << x << ", " << y;
    }
}

TEST(Blur, ShowsNoBands) {
    // Two steps of grey over 400 pixels: bands would be 200 pixels wide.
    const PixelBuffer picture = painted(400, 64,
                                        {[](int x, int) { return (100 + (x >= 200)) / 255.0; },
                                         [](int x, int) { return (100 + (x >= 200)) / 255.0; },
                                         [](int x, int) { return (100 + (x >= 200)) / 255.0; }});
    const auto pixels = drawn(*blurred(picture.view(), {0, 0, 400, 64}, 400, 64, 60), 400, 64);
    const auto expected = trueBlur(exact(picture.view()), 400, 64, 60);
    for (int x = 0; x + 8 <= 400; x += 8) {
        double seen = 0;
        double wanted = 0;
        for (int y = 0; y < 8; ++y)
            for (int i = 0; i < 8; ++i) {
                seen += double(pixels[std::size_t(y * 400 + x + i)] & 255) / 64;
                wanted += expected[std::size_t(y * 400 + x + i)][0] / 64;
            }
        EXPECT_NEAR(seen, wanted, 0.16) << x;
    }
}

TEST(BlurAxis, SharesItsCellsBetweenNeighbouringRadii) {
    EXPECT_EQ(BlurAxis(500, 16), BlurAxis(500, 31.9));
    EXPECT_NE(BlurAxis(500, 16), BlurAxis(500, 32));
    EXPECT_LE(BlurAxis(500, 16).cells(), 500 / 4 + 2 * BlurAxis::padding);
}

TEST(BlurGrid, IsEmptyWhereMemoryIsShort) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer takes the request itself for an error";
#endif
    const PixelBuffer picture = painted(2, 2, testedPictures[0].patterns);
    const BlurAxis endless(2e9, 4);
    EXPECT_TRUE(BlurGrid::reduced(picture.view(), endless, endless).isEmpty());
}

} // namespace
} // namespace framora::raster
