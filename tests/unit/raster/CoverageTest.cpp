#include "editor/render/raster/Coverage.h"

#include "editor/render/raster/RoundedRect.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace framora::raster {
namespace {

constexpr int width = 60;
constexpr int height = 50;

std::vector<float> covered(const Coverage& coverage) {
    std::vector<float> pixels(width * height, 0.0f);
    std::vector<float> row(width);
    std::vector<double> scratch;
    for (int y = 0; y < height; ++y) {
        std::fill(row.begin(), row.end(), -1.0f);
        const Coverage::Run run = coverage.row(y, 0, width, row.data(), scratch);
        for (int x = 0; x < width; ++x) {
            const bool isInRun = x >= run.first && x < run.end;
            EXPECT_EQ(row[std::size_t(x)] >= 0 && isInRun, isInRun) << x << "," << y;
            if (isInRun)
                pixels[std::size_t(y * width + x)] = row[std::size_t(x)];
            if (x >= run.fullFirst && x < run.fullEnd) {
                EXPECT_EQ(row[std::size_t(x)], 1.0f) << x << "," << y;
            }
        }
    }
    return pixels;
}

/// The same by asking at many points of every pixel whether they are inside.
void expectLikeManySamples(const RoundedRect& rect, const Placement& placement, const char* name) {
    SCOPED_TRACE(name);
    const std::vector<float> pixels = covered(Coverage(rect.outline(placement)));
    const Homography reverse = placement.toOutput.inverse();
    constexpr int samples = 32;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            int hits = 0;
            for (int j = 0; j < samples; ++j)
                for (int i = 0; i < samples; ++i) {
                    const Vec2 point{x + (i + 0.5) / samples, y + (j + 0.5) / samples};
                    const Vec2 local = reverse.map(point);
                    bool isInFront = reverse.depth(point) > 0;
                    for (const Homography& projection : placement.projections)
                        isInFront = isInFront && projection.depth(local) > 1e-3;
                    hits += isInFront && rect.contains(local);
                }
            // The samples themselves are off by up to about half a sample row along an edge.
            ASSERT_NEAR(pixels[std::size_t(y * width + x)], hits / double(samples * samples), 0.02)
                << x << "," << y;
        }
}

TEST(Coverage, IsTheAreaAtEveryAngleRadiusAndTilt) {
    const Homography toMiddle = Homography::translation(29.3, 24.8);
    const auto flat = [&](double degrees) { return Placement{toMiddle * Homography::rotation(degrees), {}}; };
    expectLikeManySamples({40, 30, 8}, flat(0), "upright");
    expectLikeManySamples({40, 30, 8}, flat(13), "turned");
    expectLikeManySamples({40, 30, 0}, flat(45), "sharp corners");
    expectLikeManySamples({40, 30, 0.7}, flat(30), "a radius below a pixel");
    expectLikeManySamples({40, 0.4, 0}, flat(7), "thinner than a pixel");
    expectLikeManySamples({0.3, 0.3, 0.1}, flat(0), "smaller than a pixel");
    expectLikeManySamples({100, 90, 30}, flat(5), "larger than the output");
    for (const double x : {-50.0, 20.0, 70.0})
        for (const double y : {-65.0, 35.0}) {
            const Homography tilts =
                Homography::tiltY(y, 40) * Homography::tiltX(x, 40) * Homography::rotation(10);
            const Homography first = Homography::tiltX(x, 40) * Homography::rotation(10);
            expectLikeManySamples({40, 30, 6}, {toMiddle * tilts, {first, tilts}}, "tilted");
        }
    const Homography steep = Homography::tiltX(60, 30);
    expectLikeManySamples({40, 90, 6}, {toMiddle * steep, {steep}}, "through the eye's plane");
}

TEST(Coverage, IsExactlyOneInsideWhateverTheRounding) {
    const std::vector<float> pixels = covered(Coverage(RoundedRect{400, 300, 20}.outline(
        {Homography::translation(31.7, 24.1) * Homography::rotation(33), {}})));
    EXPECT_EQ(*std::min_element(pixels.begin(), pixels.end()), 1.0f);
}

TEST(Coverage, KeepsToWholePixelsWhereTheEdgesDo) {
    const std::vector<float> pixels = covered(Coverage({{10, 5}, {20, 5}, {20, 15}, {10, 15}}));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            EXPECT_EQ(pixels[std::size_t(y * width + x)],
                      x >= 10 && x < 20 && y >= 5 && y < 15 ? 1.0f : 0.0f);
}

TEST(Coverage, HasTheSameExtentInAllRowsUpToItsEnd) {
    const auto at = [](const RoundedRect& rect, double degrees) {
        Coverage coverage(
            rect.outline({Homography::translation(29.3, 24.6) * Homography::rotation(degrees)}));
        coverage.index(height);
        return coverage;
    };
    const std::vector<Vec2> steps{{5, 4.5}, {40, 4.5}, {40, 20}, {50, 20}, {50, 44},
                                  {30, 44}, {30, 30},  {20, 30}, {20, 40}, {5, 40}};
    std::vector<Coverage> shapes{at({40, 30, 0}, 0), at({40, 30, 9}, 0), at({40, 30, 9}, 7),
                                 at({80, 70, 5}, 0)};
    shapes.emplace_back(steps);
    shapes.back().index(height);
    for (const Coverage& shape : shapes)
        for (int y = 0; y < height; ++y) {
            const Coverage::Run here = shape.extent(y, width);
            ASSERT_GT(shape.extentEnd(y, height), y);
            for (int row = y + 1; row < std::min(shape.extentEnd(y, height), height); ++row) {
                const Coverage::Run there = shape.extent(row, width);
                ASSERT_EQ(here.first, there.first) << y << ", " << row;
                ASSERT_EQ(here.end, there.end) << y << ", " << row;
                ASSERT_EQ(here.fullFirst, there.fullFirst) << y << ", " << row;
                ASSERT_EQ(here.fullEnd, there.fullEnd) << y << ", " << row;
            }
        }
    EXPECT_EQ(shapes[0].extentEnd(20, height), 39) << "down to the row that its lower side cuts";
    EXPECT_EQ(shapes[4].extentEnd(5, height), 20) << "where it becomes wider";
    EXPECT_EQ(shapes[2].extentEnd(20, height), 21) << "turned";
    EXPECT_EQ(shapes[0].extentEnd(20, 30), 30);
}

TEST(Coverage, DoesNotMindTheDirection) {
    const std::vector<Vec2> polygon = {{10.5, 5.2}, {40.1, 9}, {31, 44.4}};
    EXPECT_EQ(covered(Coverage(polygon)), covered(Coverage({polygon.rbegin(), polygon.rend()})));
}

TEST(Coverage, IsNothingForALineOrNothing) {
    const std::vector<float> none(width * height, 0.0f);
    EXPECT_EQ(covered(Coverage(std::vector<Vec2>{})), none);
    EXPECT_EQ(covered(Coverage({{1, 1}, {30, 40}})), none);
    EXPECT_EQ(covered(Coverage({{1.5, 1}, {30, 40.3}, {58, 79.6}, {30, 40.3}})), none);
}

TEST(Coverage, SurvivesOutlinesFarOutside) {
    covered(Coverage({{-1e12, -1e12}, {1e12, -1e12}, {1e12, 1e12}, {-1e12, 1e12}}));
    const std::vector<float> left = covered(Coverage({{-1e9, -10}, {30.25, -10}, {30.25, 1e9}, {-1e9, 1e9}}));
    EXPECT_EQ(left[0], 1.0f);
    EXPECT_FLOAT_EQ(left[30], 0.25f);
    EXPECT_EQ(left[31], 0.0f);
}

} // namespace
} // namespace framora::raster
