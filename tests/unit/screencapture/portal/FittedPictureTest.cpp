#include "screencapture/portal/KwinScreens.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

std::unique_ptr<MemoryImage> numbered(int width, int height) {
    auto image = MemoryImage::create(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image->row(y)[x] = uint32_t(y * 100 + x);
    return image;
}

TEST(FittedPictureTest, KeepsAPictureOfTheOutputsSize) {
    auto image = numbered(8, 6);
    const MemoryImage* const before = image.get();
    EXPECT_EQ(fitted(std::move(image), 8, 6).get(), before);
}

TEST(FittedPictureTest, CutsARowAndAColumnThatAreTooMuch) {
    const auto image = fitted(numbered(9, 7), 8, 6);
    ASSERT_TRUE(image);
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(image->row(y)[x], uint32_t(y * 100 + x));
}

TEST(FittedPictureTest, RepeatsTheLastRowAndColumnWhereOneIsMissing) {
    const auto image = fitted(numbered(7, 5), 8, 6);
    ASSERT_TRUE(image);
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(image->row(y)[x], uint32_t(std::min(y, 4) * 100 + std::min(x, 6)));
}

TEST(FittedPictureTest, TakesNoPictureOfAnotherSize) {
    EXPECT_FALSE(fitted(numbered(10, 6), 8, 6));
    EXPECT_FALSE(fitted(numbered(8, 4), 8, 6));
    EXPECT_FALSE(fitted(nullptr, 8, 6));
}

} // namespace
} // namespace framora
