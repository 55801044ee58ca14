#include "screencapture/MemoryImage.h"
#include "screencapture/portal/KwinWindowRoute.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

constexpr uint32_t kOpaque = 0xff336699U;
constexpr uint32_t kShadow = 0x40000000U;

/// A window of 60 x 40 at 12, 8 in its shadow of 90 x 70, with rounded corners.
std::unique_ptr<MemoryImage> shadowed(uint32_t windowPixel = kOpaque) {
    auto image = MemoryImage::create(90, 70);
    for (int y = 0; y < 70; ++y)
        for (int x = 0; x < 90; ++x) {
            const bool inside = x >= 12 && x < 72 && y >= 8 && y < 48;
            const bool corner = (x == 12 || x == 71) && (y == 8 || y == 47);
            image->row(y)[x] = inside && !corner ? windowPixel : kShadow;
        }
    return image;
}

TEST(WindowPictureTest, LosesItsShadow) {
    EXPECT_EQ(withoutShadow(*shadowed(), 60, 40), (Rect{12, 8, 60, 40}));
    // Fractions of a logical pixel are rounded by the compositor.
    EXPECT_EQ(withoutShadow(*shadowed(), 59.6, 40.4), (Rect{12, 8, 60, 40}));
}

TEST(WindowPictureTest, StaysWholeWhereTheOpaquePartIsNotTheWindow) {
    EXPECT_EQ(withoutShadow(*shadowed(), 60, 55), (Rect{0, 0, 90, 70}));
    EXPECT_EQ(withoutShadow(*shadowed(0xc0336699U), 60, 40), (Rect{0, 0, 90, 70}));
}

} // namespace
} // namespace framora
