#include "screencapture/PixelFormat.h"

#include <array>
#include <gtest/gtest.h>

namespace framora {
namespace {

constexpr PixelFormat kSixteen{16, 32, true, 0xf800, 0x07e0, 0x001f, 0};
constexpr PixelFormat kTwentyFour{24, 32, true, 0xff0000, 0xff00, 0xff, 0};
constexpr PixelFormat kThirty{32, 32, true, 0x3ff00000, 0xffc00, 0x3ff, 0};
constexpr PixelFormat kBigEndian{32, 32, false, 0xff0000, 0xff00, 0xff, 0xff000000};

TEST(PixelFormatTest, onlyBgraWordsAreNative) {
    EXPECT_TRUE(PixelFormat{}.native());
    for (const auto& format : {kSixteen, kTwentyFour, kThirty, kBigEndian}) {
        EXPECT_FALSE(format.native());
        EXPECT_TRUE(format.supported());
    }
    EXPECT_FALSE((PixelFormat{8, 32, true, 0, 0, 0, 0}).supported());
}

TEST(PixelFormatTest, linesAreAsLongAsTheServerPadsThem) {
    EXPECT_EQ(kSixteen.stride(3), 8U);
    EXPECT_EQ(kTwentyFour.stride(5), 16U);
    EXPECT_EQ(kThirty.stride(5), 20U);
}

TEST(PixelFormatTest, whatWasWrittenIsReadAgain) {
    // Colours that 5 and 6 bits hold exactly.
    const std::array<uint32_t, 4> pixels{0xff000000, 0xffffffff, 0xffff0000, 0xff00ff00};
    for (const auto& format : {kSixteen, kTwentyFour, kThirty, kBigEndian}) {
        std::array<uint8_t, 64> row{};
        std::array<uint32_t, 4> back{};
        format.fromBgra(pixels.data(), 4, row.data());
        format.toBgra(row.data(), 4, back.data());
        EXPECT_EQ(back, pixels) << format.bitsPerPixel;
    }
}

TEST(PixelFormatTest, everyByteSurvivesTenBitsAChannel) {
    for (uint32_t value = 0; value < 256; ++value) {
        const uint32_t pixel = 0xff000000U | value << 16 | (255 - value) << 8 | value;
        std::array<uint8_t, 4> row{};
        uint32_t back = 0;
        kThirty.fromBgra(&pixel, 1, row.data());
        kThirty.toBgra(row.data(), 1, &back);
        ASSERT_EQ(back, pixel);
    }
}

TEST(PixelFormatTest, keepsAlphaWhereThereIsOne) {
    const uint32_t pixel = 0x40102030;
    std::array<uint8_t, 4> row{};
    uint32_t back = 0;
    kBigEndian.fromBgra(&pixel, 1, row.data());
    EXPECT_EQ(row, (std::array<uint8_t, 4>{0x40, 0x10, 0x20, 0x30}));
    kBigEndian.toBgra(row.data(), 1, &back);
    EXPECT_EQ(back, pixel);
}

} // namespace
} // namespace framora
