#include "editor/render/raster/PicturePaint.h"

#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>

namespace framora::raster {
namespace {

constexpr int side = 64;

struct Picture {
    PixelBuffer pixels = PixelBuffer::create(side, side);
    std::shared_ptr<const PicturePyramid> pyramid;
};

template <typename Function> Picture makePicture(Function color) {
    Picture picture;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            picture.pixels.mutableView().row(y)[x] = color(x, y);
    picture.pyramid = std::make_shared<PicturePyramid>(picture.pixels.view());
    return picture;
}

std::uint32_t shaded(const PicturePaint& paint, int x, int y) {
    Float4 pixel;
    paint.shade(x, y, 1, &pixel);
    return pack(pixel);
}

std::uint32_t noise(int x, int y) {
    std::mt19937 random(std::uint32_t(x * 1000 + y));
    return std::uint32_t(random()) | 0xff000000u;
}

TEST(PicturePaint, CopiesOneToOneBitForBitInAllFourOrientations) {
    const Picture picture = makePicture(noise);
    const Homography toMiddle = Homography::translation(50, 50);
    for (const double degrees : {0.0, 90.0, 180.0, 270.0}) {
        const PicturePaint paint(picture.pyramid, side, side, {toMiddle * Homography::rotation(degrees)}, 100,
                                 100);
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x) {
                const Vec2 at =
                    (toMiddle * Homography::rotation(degrees)).map({x + 0.5 - side / 2, y + 0.5 - side / 2});
                ASSERT_EQ(shaded(paint, int(std::floor(at.x)), int(std::floor(at.y))), noise(x, y))
                    << degrees << ": " << x << "," << y;
            }
    }
}

TEST(PicturePaint, ReadsASmoothPictureWhereTheMapSays) {
    // A ramp is its own interpolation, so that any map can be checked against arithmetic.
    const auto ramp = [](double x, double y) { return 3 * (x - 0.5) + 0.9 * (y - 0.5); };
    const Picture picture = makePicture([&](int x, int y) {
        const auto grey = std::uint32_t(std::lround(ramp(x + 0.5, y + 0.5)));
        return 0xff000000u | grey << 16 | grey << 8 | grey;
    });
    const Homography toMiddle = Homography::translation(60, 50);
    const Homography maps[] = {
        toMiddle * Homography::scaling(1.7, 1.7),
        toMiddle * Homography::scaling(0.45, 0.45),
        toMiddle * Homography::rotation(31),
        toMiddle * Homography::rotation(-20) * Homography::scaling(2.5, 2.5),
        toMiddle * Homography::rotation(65) * Homography::scaling(0.6, 0.6),
        toMiddle * Homography::tiltY(40, 64) * Homography::tiltX(-30, 64),
        toMiddle * Homography::tiltX(70, 64) * Homography::scaling(0.8, 0.8),
    };
    for (std::size_t i = 0; i < std::size(maps); ++i) {
        const PicturePaint paint(picture.pyramid, side, side, {maps[i]}, 120, 100);
        const Homography reverse = maps[i].inverse();
        int checked = 0;
        for (int y = 0; y < 100; ++y)
            for (int x = 0; x < 120; ++x) {
                const Vec2 source = reverse.map({x + 0.5, y + 0.5});
                // Away from the edge, where the ramp stops.
                if (std::abs(source.x) > 20 || std::abs(source.y) > 20)
                    continue;
                ++checked;
                const double expected = ramp(source.x + side / 2, source.y + side / 2);
                ASSERT_NEAR(int(shaded(paint, x, y) & 255), expected, 2.1)
                    << "map " << i << " at " << x << "," << y;
            }
        EXPECT_GT(checked, 100) << i;
    }
}

TEST(PicturePaint, TurnsAFineGridIntoItsMeanAtAnyAngleAndTilt) {
    const Picture picture = makePicture([](int x, int y) { return (x + y) % 2 ? 0xffffffffu : 0xff000000u; });
    const Homography toMiddle = Homography::translation(50, 50);
    const Homography maps[] = {
        toMiddle * Homography::rotation(10) * Homography::scaling(0.52, 0.52),
        toMiddle * Homography::rotation(45) * Homography::scaling(0.5, 0.5),
        toMiddle * Homography::tiltY(25, 64) * Homography::scaling(0.4, 0.4),
        toMiddle * Homography::tiltX(75, 64) * Homography::rotation(45) * Homography::scaling(0.5, 0.5),
    };
    for (std::size_t i = 0; i < std::size(maps); ++i) {
        const PicturePaint paint(picture.pyramid, side, side, {maps[i]}, 100, 100);
        const Homography reverse = maps[i].inverse();
        for (int y = 0; y < 100; ++y)
            for (int x = 0; x < 100; ++x) {
                const Vec2 source = reverse.map({x + 0.5, y + 0.5});
                if (std::abs(source.x) < 22 && std::abs(source.y) < 22 &&
                    reverse.depth({x + 0.5, y + 0.5}) > 0) {
                    ASSERT_NEAR(int(shaded(paint, x, y) & 255), 127.5, 14)
                        << "map " << i << " at " << x << "," << y;
                }
            }
    }
}

TEST(PicturePaint, KeepsWhatIsNearSharpBesideWhatIsFar) {
    // Almost edge on, a wide picture goes from magnified to a hundredfold reduced within a dozen rows.
    constexpr int width = 2560;
    constexpr int height = 1600;
    constexpr int band = 80;
    const auto isWhite = [](double x) { return int(x / band) % 2 == 0; };
    PixelBuffer pixels = PixelBuffer::create(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            pixels.mutableView().row(y)[x] = isWhite(x) ? 0xffffffffu : 0xff000000u;
    const auto pyramid = std::make_shared<PicturePyramid>(pixels.view());
    constexpr int wide = 5440;
    constexpr int high = 200;
    const Homography toOutput = Homography::translation(wide / 2.0, high / 2.0) * Homography::scaling(2, 2) *
                                Homography::tiltX(89.5, width);
    const PicturePaint paint(pyramid, width, height, {toOutput}, wide, high);
    const Homography toPicture = Homography::translation(width / 2.0, height / 2.0) * toOutput.inverse();
    std::vector<MixPixel> drawn(std::size_t(wide) * high);
    paint.mix({0, 0, wide, high}, drawn.data());
    int checked = 0;
    int far = 0;
    for (int y = 0; y < high; ++y)
        for (int x = 0; x < wide; ++x) {
            int inside = 0;
            int white = 0;
            for (int i = 0; i < 16; ++i) {
                const Vec2 at = toPicture.map({x + (i % 4 + 0.5) / 4, y + (i / 4 + 0.5) / 4});
                inside += at.x >= 0 && at.x < width && at.y >= 0 && at.y < height;
                white += isWhite(at.x);
            }
            if (inside < 16)
                continue;
            const Vec2 middle = toPicture.map({x + 0.5, y + 0.5});
            // Away from the bands' edges, which a cubic softens.
            const double inBand = std::fmod(middle.x, band);
            if (inBand < 20 || inBand > band - 20 || (white != 0 && white != 16))
                continue;
            ++checked;
            const int expected = white == 16 ? mixOne : 0;
            far += std::abs(drawn[std::size_t(y) * wide + std::size_t(x)].channel[1] - expected) > mixOne / 8;
        }
    ASSERT_GT(checked, 20'000);
    EXPECT_LT(far, checked / 50);
}

TEST(PicturePaint, RepeatsItsEdge) {
    const Picture picture = makePicture([](int, int) { return 0xff3070a0u; });
    const PicturePaint upright(picture.pyramid, side, side, {Homography::translation(50.3, 50.6)}, 100, 100);
    const PicturePaint turned(picture.pyramid, side, side,
                              {Homography::translation(50, 50) * Homography::rotation(20)}, 100, 100);
    for (int x = 18; x < 82; ++x)
        EXPECT_EQ(shaded(upright, x, 18), 0xff3070a0u);
    for (int x = 0; x < 100; ++x)
        EXPECT_EQ(shaded(turned, x, 3), 0xff3070a0u);
}

TEST(PicturePaint, GivesSomeColourForAnyMap) {
    const Picture picture = makePicture(noise);
    const Homography maps[] = {
        Homography::scaling(0, 0),         Homography::scaling(1e-9, 1e-9),
        Homography::scaling(1e9, 1e9),     Homography::scaling(-1, 1),
        Homography::tiltX(90, 64),         Homography::tiltX(89.9999, 64) * Homography::rotation(5),
        Homography::scaling(1e-9, 1e-300), Homography::tiltX(60, 5) * Homography::scaling(30, 30),
    };
    for (const Homography& map : maps) {
        const PicturePaint paint(picture.pyramid, side, side, {Homography::translation(50, 50) * map}, 100,
                                 100);
        for (int y = 0; y < 100; y += 7) {
            Float4 row[100];
            paint.shade(0, y, 100, row);
            for (const Float4& pixel : row)
                for (int i = 0; i < 4; ++i)
                    ASSERT_TRUE(pixel[i] >= 0 && pixel[i] <= 1.0001f);
        }
    }
}

TEST(PicturePaint, ReadsFromItsCacheWhatItWouldCompute) {
    const Picture picture = makePicture(noise);
    ShadeCache cache;
    for (const Homography& map :
         {Homography::scaling(0.7, 0.7), Homography::tiltY(30, 64) * Homography::rotation(9)})
        // Half outside at first, so that what comes into sight later was never computed for a smaller output.
        for (const double x : {0.25, 10.25, 60.25, 61.0, 61.0, 90.0}) {
            Placement placement{map};
            placement.move(x, 40.5);
            const PicturePaint plain(picture.pyramid, side, side, placement, 100, 100);
            const PicturePaint cached(picture.pyramid, side, side, placement, 100, 100, &cache);
            for (int again = 0; again < 2; ++again)
                for (int y = 0; y < 100; ++y) {
                    Float4 expected[100];
                    Float4 read[100];
                    plain.shade(0, y, 100, expected);
                    cached.shade(0, y, 37, read);
                    cached.shade(37, y, 63, read + 37);
                    const int left = std::max(0, int(x) - 20);
                    const int right = std::min(100, int(x) + 20);
                    if (y > 20 && y < 60) { // where the picture is, in every map
                        for (int i = left; i < right; ++i)
                            for (int channel = 0; channel < 4; ++channel)
                                ASSERT_EQ(read[i][channel], expected[i][channel])
                                    << x << ": " << i << "," << y;
                    }
                }
        }
}

TEST(ShadeCache, KeepsWhatComesTwiceInARow) {
    ShadeCache cache;
    ShadeCache::Key key{Homography::scaling(2, 2), -5, 0, 100, 10};
    EXPECT_FALSE(cache.begin(key));
    EXPECT_TRUE(cache.begin(key));
    std::size_t computed = 0;
    const auto compute = [&](const TileRect& tile, MixPixel* out) {
        computed += tile.area();
        for (int y = 0; y < tile.height; ++y)
            for (int x = 0; x < tile.width; ++x)
                *out++ = {{std::int16_t(tile.x + x), std::int16_t(tile.y + y), 0, 0}};
    };
    MixPixel block[200];
    for (int again = 0; again < 3; ++again) {
        cache.read({-5, 3, 100, 2}, block, compute);
        EXPECT_EQ(block[0], (MixPixel{{-5, 3, 0, 0}}));
        EXPECT_EQ(block[199], (MixPixel{{94, 4, 0, 0}}));
    }
    EXPECT_EQ(computed, 200u);
    cache.read({-6, 3, 4, 1}, block, compute); // reaches out of the kept rectangle
    EXPECT_EQ(computed, 204u);
    EXPECT_EQ(block[0], (MixPixel{{-6, 3, 0, 0}}));
    EXPECT_TRUE(cache.begin(key));
    cache.read({0, 2, 10, 4}, block, compute);
    EXPECT_EQ(computed, 204u + 2 * 64) << "only the two rows that were not there";
    EXPECT_EQ(block[10], (MixPixel{{0, 3, 0, 0}}));
    EXPECT_EQ(block[39], (MixPixel{{9, 5, 0, 0}}));
    key.map = Homography::scaling(3, 3);
    EXPECT_FALSE(cache.begin(key));
    EXPECT_TRUE(cache.begin(key));
    cache.read({0, 3, 1, 1}, block, compute);
    EXPECT_EQ(computed, 204u + 3 * 64) << "a block at a time";
}

TEST(Placement, MovesItsOriginByWholePixelsAndItsMapByTheRest) {
    Placement placement{Homography::scaling(3, 3)};
    placement.move(-7.25, 1000.5);
    EXPECT_EQ(placement.originX, -8);
    EXPECT_EQ(placement.originY, 1000);
    EXPECT_EQ(placement.toOutput(0, 2), 0.75);
    EXPECT_EQ(placement.toOutput(1, 2), 0.5);
    const Vec2 local = placement.toLocal().map({-7.25 + 3, 1000.5 - 6});
    EXPECT_NEAR(local.x, 1, 1e-9);
    EXPECT_NEAR(local.y, -2, 1e-9);
    // The same rest wherever it comes from.
    for (int i = 0; i < 1000; ++i) {
        Placement a{Homography::rotation(3)};
        Placement b{Homography::rotation(3)};
        a.move(i * 0.1 + 0.3, 0);
        b.move(i * 0.1 + 0.3 + 517, 0);
        ASSERT_TRUE(a.toOutput == b.toOutput) << i;
    }
    placement.move(1e300, 0);
    EXPECT_FALSE(placement.toOutput.isFinite());
}

TEST(PicturePyramid, KnowsWhetherItIsOpaque) {
    EXPECT_TRUE(makePicture(noise).pyramid->isOpaque());
    EXPECT_FALSE(makePicture([](int x, int y) {
                     return x == 63 && y == 63 ? 0xfe000000u : 0xff000000u;
                 }).pyramid->isOpaque());
}

TEST(PicturePyramid, HalvesEverySecondLevel) {
    const Picture picture = makePicture(noise);
    EXPECT_EQ(picture.pyramid->level(0).width, 64);
    EXPECT_EQ(picture.pyramid->level(1).width, 45);
    EXPECT_EQ(picture.pyramid->level(2).width, 32);
    EXPECT_EQ(picture.pyramid->level(4, 2).width, 16) << "across by more than down";
    EXPECT_EQ(picture.pyramid->level(4, 2).height, picture.pyramid->level(2).height);
    EXPECT_EQ(picture.pyramid->level(23).width, 1);
    EXPECT_EQ(picture.pyramid->level(99).height, 1);
}

} // namespace
} // namespace framora::raster
