#include "editor/render/decoders/CodedColors.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>

namespace framora {
namespace {

enum { bt709 = 1, smpte170m = 6, bt2020 = 9, displayP3 = 12 };
enum { srgb = 13, pq = 16, hlg = 18 };

/// Values of 0 to 1 in and out.
std::array<double, 3> toSrgb(int primaries, int transfer, std::array<double, 3> rgb) {
    std::array<std::uint16_t, 4> pixel{};
    for (std::size_t i = 0; i < 3; ++i)
        pixel[i] = std::uint16_t(std::lround(rgb[i] * 65535));
    pixel[3] = 12345;
    CodedColors(primaries, transfer).toSrgb(pixel);
    EXPECT_EQ(pixel[3], 12345) << "alpha stays";
    return {pixel[0] / 65535.0, pixel[1] / 65535.0, pixel[2] / 65535.0};
}

void expectNear(std::array<double, 3> found, std::array<double, 3> expected) {
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(found[i], expected[i], 0.003) << i;
}

TEST(CodedColors, StandardVideoIsTakenAsItIs) {
    for (const int primaries : {2, int(bt709), int(smpte170m)})
        for (const int transfer : {1, 2, 6, int(srgb)}) {
            EXPECT_TRUE(CodedColors(primaries, transfer).isSrgb());
            EXPECT_EQ(toSrgb(primaries, transfer, {1, 0.5, 0})[2], 0);
        }
}

TEST(CodedColors, WideColoursComeToTheirPlaceInSrgb) {
    // sRGB's primaries as Display P3 and as BT.2020 have them, sRGB-encoded.
    expectNear(toSrgb(displayP3, srgb, {0.9175, 0.2003, 0.1386}), {1, 0, 0});
    expectNear(toSrgb(displayP3, srgb, {0.4584, 0.9853, 0.2983}), {0, 1, 0});
    expectNear(toSrgb(bt2020, srgb, {0.8138, 0.2915, 0.1353}), {1, 0, 0});
    for (const int primaries : {int(displayP3), int(bt2020)}) {
        expectNear(toSrgb(primaries, srgb, {1, 1, 1}), {1, 1, 1});
        expectNear(toSrgb(primaries, srgb, {0.25, 0.25, 0.25}), {0.25, 0.25, 0.25});
        expectNear(toSrgb(primaries, srgb, {0, 1, 0}), {0, 1, 0}); // beyond sRGB: clipped
    }
}

TEST(CodedColors, HighDynamicRangeKeepsGreysGreyAndInOrder) {
    for (const int transfer : {int(pq), int(hlg)})
        for (const int primaries : {int(bt709), int(bt2020)}) {
            double last = -1;
            for (int step = 0; step <= 64; ++step) {
                const double value = step / 64.0;
                const auto grey = toSrgb(primaries, transfer, {value, value, value});
                expectNear(grey, {grey[0], grey[0], grey[0]});
                EXPECT_GE(grey[0], last);
                last = grey[0];
            }
            EXPECT_NEAR(last, 1, 0.001);
        }
}

TEST(CodedColors, ADimPartOfAHighDynamicRangeIsNotBent) {
    // 20.3 cd/m2 is a tenth of white: 0.3492 in sRGB. PQ codes it as 0.3583; HLG's scene light for it is
    // (20.3 / 1000)^(1 / 1.2), coded as 0.3415.
    expectNear(toSrgb(bt709, pq, {0.3583, 0.3583, 0.3583}), {0.3492, 0.3492, 0.3492});
    expectNear(toSrgb(bt709, hlg, {0.3415, 0.3415, 0.3415}), {0.3492, 0.3492, 0.3492});
}

} // namespace
} // namespace framora
