#include "editor/render/raster/PicturePaint.h"

#include <cmath>
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
        const PicturePaint paint(picture.pyramid, side, side, toMiddle * Homography::rotation(degrees), 100,
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
        const PicturePaint paint(picture.pyramid, side, side, maps[i], 120, 100);
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
        const PicturePaint paint(picture.pyramid, side, side, maps[i], 100, 100);
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

TEST(PicturePaint, RepeatsItsEdge) {
    const Picture picture = makePicture([](int, int) { return 0xff3070a0u; });
    const PicturePaint upright(picture.pyramid, side, side, Homography::translation(50.3, 50.6), 100, 100);
    const PicturePaint turned(picture.pyramid, side, side,
                              Homography::translation(50, 50) * Homography::rotation(20), 100, 100);
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
        const PicturePaint paint(picture.pyramid, side, side, Homography::translation(50, 50) * map, 100,
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
    EXPECT_EQ(picture.pyramid->level(23).width, 1);
    EXPECT_EQ(picture.pyramid->level(99).height, 1);
}

} // namespace
} // namespace framora::raster
