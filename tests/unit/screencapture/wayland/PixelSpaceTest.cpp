#include "screencapture/wayland/PixelSpace.h"

#include <cmath>
#include <gtest/gtest.h>

namespace framora {

void PrintTo(const Rect& r, std::ostream* out) {
    *out << r.x << "," << r.y << " " << r.width << "x" << r.height;
}

namespace {

Output output(const Rect& logical, double scale, int pixelWidth = 0, int pixelHeight = 0) {
    Output made;
    made.logical = logical;
    made.scale = scale;
    made.pixelWidth = pixelWidth ? pixelWidth : static_cast<int>(logical.width * scale);
    made.pixelHeight = pixelHeight ? pixelHeight : static_cast<int>(logical.height * scale);
    return made;
}

TEST(PixelSpaceTest, everyOutputLiesWhereItIsSeenInThePixelsOfTheHome) {
    const std::vector<Output> outputs{output({0, 0, 1000, 800}, 1), output({1000, 200, 800, 600}, 2),
                                      output({-800, 0, 800, 600}, 1.5)};
    EXPECT_EQ(PixelSpace(outputs, 0).monitors(),
              (std::vector<Rect>{{0, 0, 1000, 800}, {1000, 200, 800, 600}, {-800, 0, 800, 600}}));
    EXPECT_EQ(PixelSpace(outputs, 1).monitors(),
              (std::vector<Rect>{{-2000, -400, 2000, 1600}, {0, 0, 1600, 1200}, {-3600, -400, 1600, 1200}}));
    EXPECT_EQ(PixelSpace(outputs, 2).scale(), 1.5);
}

TEST(PixelSpaceTest, outputsOfTheHomesScaleKeepTheirPixelsAndTouchWhereTheLayoutDoes) {
    // 1366 pixels at 1.25 are 1092.8 logical ones, of which a compositor tells 1092 or 1093.
    for (const int logical : {1092, 1093}) {
        const std::vector<Output> outputs{output({0, 0, logical, 614}, 1.25, 1366, 768),
                                          output({logical, 0, logical, 614}, 1.25, 1366, 768)};
        EXPECT_EQ(PixelSpace(outputs, 0).monitors()[1], (Rect{1366, 0, 1366, 768}));
        EXPECT_EQ(PixelSpace(outputs, 1).monitors()[0], (Rect{-1366, 0, 1366, 768}));
        EXPECT_TRUE(PixelSpace(outputs, 0).exact(1));
    }
}

TEST(PixelSpaceTest, aPointerIsOnThePixelItStandsOn) {
    const std::vector<Output> outputs{output({0, 0, 800, 600}, 1.25), output({800, 0, 800, 600}, 1)};
    const PixelSpace space(outputs, 0);
    for (int pixel = 0; pixel < 1000; ++pixel) {
        // As the protocol tells a place: rounded to 1/256.
        const double logical = std::round(pixel / 1.25 * 256) / 256;
        EXPECT_EQ(space.pixelAt(0, logical, logical), (Point{pixel, pixel}));
    }
    // Beyond the home while a button is held, told from the home or from the other output.
    EXPECT_EQ(space.pixelAt(0, 900, 10), (Point{1125, 12}));
    EXPECT_EQ(space.pixelAt(1, 100, 10), (Point{1125, 12}));
    EXPECT_EQ(space.pixelAt(0, -4, -8), (Point{-5, -10}));
}

TEST(PixelSpaceTest, aBoxComesBackInAnOutputsOwnPixels) {
    const std::vector<Output> outputs{output({0, 0, 1000, 800}, 1), output({1000, 200, 800, 600}, 2)};
    const PixelSpace coarse(outputs, 0);
    EXPECT_EQ(coarse.onOutput(Rect{900, 300, 200, 100}, 0), (Rect{900, 300, 200, 100}));
    EXPECT_EQ(coarse.onOutput(Rect{900, 300, 200, 100}, 1), (Rect{-200, 200, 400, 200}));
    const PixelSpace fine(outputs, 1);
    EXPECT_EQ(fine.onOutput(Rect{-200, 200, 400, 200}, 0), (Rect{900, 300, 200, 100}));
    EXPECT_EQ(fine.onOutput(Rect{}, 0), Rect{});
}

TEST(PixelSpaceTest, logicalBoxesAreRoundedByTheirEdges) {
    const Output fractional = output({100, 0, 800, 600}, 1.5);
    EXPECT_EQ(inPixelsOf(fractional, {101, 1, 1, 1}), (Rect{2, 2, 1, 1}));
    // Two that touch still do.
    const Rect left = inPixelsOf(fractional, {100, 0, 33, 10});
    const Rect right = inPixelsOf(fractional, {133, 0, 33, 10});
    EXPECT_EQ(left.right(), right.x);
    EXPECT_EQ(inPixelsOf(fractional, {}), Rect{});
}

} // namespace
} // namespace framora
