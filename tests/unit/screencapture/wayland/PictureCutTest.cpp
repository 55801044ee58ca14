#include "screencapture/wayland/PictureCut.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

Output output(const Rect& logical, double scale) {
    Output made;
    made.logical = logical;
    made.scale = scale;
    made.pixelWidth = static_cast<int>(logical.width * scale);
    made.pixelHeight = static_cast<int>(logical.height * scale);
    return made;
}

uint32_t pixelOf(int seed, int x, int y) {
    return static_cast<uint32_t>(seed * 97 + x * 7 + y * 131) * 2654435761U;
}

class PictureCutTest : public testing::Test {
protected:
    void show(const std::vector<Output>& all) {
        outputs = all;
        for (std::size_t i = 0; i < outputs.size(); ++i) {
            auto image = MemoryImage::create(outputs[i].pixelWidth, outputs[i].pixelHeight);
            for (int y = 0; y < image->height(); ++y)
                for (int x = 0; x < image->width(); ++x)
                    image->row(y)[x] = pixelOf(static_cast<int>(i), x, y);
            frozen.push_back(std::move(image));
        }
    }

    /// Pixels of the box, in the picture, that are not those of the output from this place on.
    static int wrong(const MemoryImage& picture, const Rect& box, int seed, Point from) {
        int count = 0;
        for (int y = 0; y < box.height; ++y)
            for (int x = 0; x < box.width; ++x)
                count += picture.row(box.y + y)[box.x + x] !=
                         (pixelOf(seed, from.x + x, from.y + y) | 0xff000000U);
        return count;
    }

    std::vector<Output> outputs;
    std::vector<std::unique_ptr<PixelImage>> frozen;
};

TEST_F(PictureCutTest, outputsOfOneScaleAreCopiedBitForBitAndOpaque) {
    show({output({0, 0, 100, 80}, 1.5), output({100, 20, 100, 80}, 1.5)});
    const auto picture = cutPicture(PixelSpace(outputs, 0), outputs, frozen, {120, 60, 60, 80});
    ASSERT_TRUE(picture);
    ASSERT_EQ(picture->width(), 60);
    ASSERT_EQ(picture->height(), 80);
    EXPECT_EQ(wrong(*picture, {0, 0, 30, 60}, 0, {120, 60}), 0);
    EXPECT_EQ(wrong(*picture, {30, 0, 30, 80}, 1, {0, 30}), 0);
    // Below the left output there is nothing.
    for (int y = 60; y < 80; ++y)
        for (int x = 0; x < 30; ++x)
            EXPECT_EQ(picture->row(y)[x], 0U);
}

TEST_F(PictureCutTest, anotherScaleIsResampledAndLeavesTheHomeAlone) {
    show({output({0, 0, 100, 80}, 1), output({100, 0, 100, 80}, 2)});
    for (int y = 0; y < 160; ++y)
        for (int x = 0; x < 200; ++x)
            frozen[1]->row(y)[x] = (x + y) % 2 ? 0x00ffffffU : 0U;
    const auto picture = cutPicture(PixelSpace(outputs, 0), outputs, frozen, {60, 10, 80, 40});
    ASSERT_TRUE(picture);
    EXPECT_EQ(wrong(*picture, {0, 0, 40, 40}, 0, {60, 10}), 0);
    for (int y = 0; y < 40; ++y)
        for (int x = 40; x < 80; ++x) {
            const uint32_t p = picture->row(y)[x];
            EXPECT_EQ(p >> 24, 255U);
            EXPECT_NEAR(static_cast<int>(p & 255U), 128, 2);
        }
}

TEST_F(PictureCutTest, whatLiesBeyondAllOutputsIsCutOff) {
    show({output({0, 0, 100, 80}, 1)});
    const auto picture = cutPicture(PixelSpace(outputs, 0), outputs, frozen, {-20, 60, 50, 50});
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->width(), 30);
    EXPECT_EQ(picture->height(), 20);
    EXPECT_EQ(wrong(*picture, {0, 0, 30, 20}, 0, {0, 60}), 0);
    EXPECT_FALSE(cutPicture(PixelSpace(outputs, 0), outputs, frozen, {200, 0, 10, 10}));
    EXPECT_FALSE(cutPicture(PixelSpace(outputs, 0), outputs, frozen, {}));
}

} // namespace
} // namespace framora
