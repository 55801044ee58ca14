#include "screencapture/wayland/UprightPixels.h"

#include "screencapture/Geometry.h"
#include "screencapture/MemoryImage.h"

#include <gtest/gtest.h>
#include <wayland-client-protocol.h>

namespace framora {
namespace {

constexpr int kWidth = 37;
constexpr int kHeight = 21;

/// Where the protocol says a point of the user's picture, of that size, is in the panel's: turned
/// counter-clockwise by the transform, after flipping left and right.
Point onPanel(Point p, int transform, int width, int height) {
    if (transform >= WL_OUTPUT_TRANSFORM_FLIPPED)
        p.x = width - 1 - p.x;
    for (int turn = transform % 4; turn > 0; --turn) {
        p = {p.y, width - 1 - p.x};
        std::swap(width, height);
    }
    return p;
}

uint32_t pixelOf(int x, int y) {
    return static_cast<uint32_t>(x * 7 + y * 131 + 1) * 2654435761U & 0xffffffU;
}

TEST(UprightPixelsTest, everyTransformIsTakenBack) {
    for (int transform = 0; transform < 8; ++transform)
        for (const bool bottomUp : {false, true}) {
            const bool onItsSide = transform % 2 == 1;
            const int panelWidth = onItsSide ? kHeight : kWidth;
            const int panelHeight = onItsSide ? kWidth : kHeight;
            const std::size_t stride = static_cast<std::size_t>(panelWidth) + 5;
            std::vector<uint32_t> panel(stride * static_cast<std::size_t>(panelHeight), 0xabababab);
            for (int y = 0; y < kHeight; ++y)
                for (int x = 0; x < kWidth; ++x) {
                    const Point at = onPanel({x, y}, transform, kWidth, kHeight);
                    const int line = bottomUp ? panelHeight - 1 - at.y : at.y;
                    panel[static_cast<std::size_t>(line) * stride + static_cast<std::size_t>(at.x)] =
                        pixelOf(x, y);
                }
            const auto upright = MemoryImage::create(kWidth, kHeight);
            copyUpright({reinterpret_cast<const uint8_t*>(panel.data()), panelWidth, panelHeight, stride * 4,
                         *shmPixelFormat(WL_SHM_FORMAT_XRGB8888), bottomUp, transform},
                        *upright);
            int wrong = 0;
            for (int y = 0; y < kHeight; ++y)
                for (int x = 0; x < kWidth; ++x)
                    wrong += upright->row(y)[x] != pixelOf(x, y);
            EXPECT_EQ(wrong, 0) << "transform " << transform << (bottomUp ? " bottom up" : "");
        }
}

TEST(UprightPixelsTest, everyFormatGivesTheSameColour) {
    const struct {
        uint32_t format;
        std::vector<uint8_t> bytes;
    } cases[] = {
        {WL_SHM_FORMAT_XRGB8888, {0x30, 0x20, 0x10, 0}},
        {WL_SHM_FORMAT_ARGB8888, {0x30, 0x20, 0x10, 0x80}},
        {WL_SHM_FORMAT_XBGR8888, {0x10, 0x20, 0x30, 0}},
        {WL_SHM_FORMAT_ABGR8888, {0x10, 0x20, 0x30, 0xff}},
        {WL_SHM_FORMAT_RGBX8888, {0, 0x30, 0x20, 0x10}},
        {WL_SHM_FORMAT_BGRX8888, {0, 0x10, 0x20, 0x30}},
        {WL_SHM_FORMAT_RGB888, {0x30, 0x20, 0x10}},
        {WL_SHM_FORMAT_BGR888, {0x10, 0x20, 0x30}},
        // 0x10, 0x20 and 0x30 of 255 are 64, 128 and 193 of 1023.
        {WL_SHM_FORMAT_XRGB2101010, {0xc1, 0x00, 0x02, 0x04}},
        {WL_SHM_FORMAT_XBGR2101010, {0x40, 0x00, 0x12, 0x0c}},
    };
    for (const auto& one : cases) {
        const auto format = shmPixelFormat(one.format);
        ASSERT_TRUE(format);
        const auto upright = MemoryImage::create(1, 1);
        copyUpright({one.bytes.data(), 1, 1, one.bytes.size(), *format, false, 0}, *upright);
        EXPECT_EQ(upright->row(0)[0] & 0xffffffU, 0x102030U) << one.format;
    }
    EXPECT_FALSE(shmPixelFormat(WL_SHM_FORMAT_YUYV));
    EXPECT_FALSE(shmPixelFormat(WL_SHM_FORMAT_C8));
}

} // namespace
} // namespace framora
