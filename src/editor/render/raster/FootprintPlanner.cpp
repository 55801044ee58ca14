#include "editor/render/raster/FootprintPlanner.h"

#include "editor/render/raster/CubicTaps.h"

#include <algorithm>
#include <cmath>

namespace framora::raster {
namespace {

// The narrow side is widened to the long side over this.
constexpr double longestFootprint = 16;
// Readings are this far apart at most, in their widths.
constexpr double widestGap = 0.9;
constexpr int mostReadings = 12;
// Readings lie no farther from a footprint's middle, in pixels of the level.
constexpr double farthestReading = 64;
// What is less aslant is read once, as if it lay along the axes.
constexpr double leastSlant = 0.1;
// A cubic's variance in squares of its width, about.
constexpr double variance = 0.25;

/// The corners of a block: the upper left one, the upper right one, and those below.
Vec2 cornerOf(const TileRect& block, int index) {
    const int row = index / 2;
    return {double(block.x + index % 2 * block.width), double(block.y + row * block.height)};
}

/// The footprint where it is no narrower than a source pixel.
FootprintPlanner::Ellipse widened(const FootprintPlanner::Ellipse& exact) {
    const double difference = (exact.xx - exact.yy) / 2;
    const double mean = (exact.xx + exact.yy) / 2;
    const double spread = std::sqrt(difference * difference + exact.xy * exact.xy);
    const double longSide = std::max(mean + spread, 1.0);
    const double narrowSide =
        std::clamp(mean - spread, std::max(1.0, longSide / (longestFootprint * longestFootprint)), longSide);
    const double alongX = spread > 0 ? 0.5 + difference / (2 * spread) : 0.5;
    const double alongXY = spread > 0 ? exact.xy / (2 * spread) : 0;
    return {narrowSide + (longSide - narrowSide) * alongX, (longSide - narrowSide) * alongXY,
            narrowSide + (longSide - narrowSide) * (1 - alongX)};
}

} // namespace

double FootprintPlanner::Ellipse::longest() const {
    const double difference = (xx - yy) / 2;
    return std::sqrt((xx + yy) / 2 + std::sqrt(difference * difference + xy * xy));
}

FootprintPlanner::Ellipse FootprintPlanner::ellipse(const Homography& g, Vec2 source, double depth) {
    const double scale = 1 / depth;
    const double dxx = (g(0, 0) - source.x * g(2, 0)) * scale;
    const double dxy = (g(0, 1) - source.x * g(2, 1)) * scale;
    const double dyx = (g(1, 0) - source.y * g(2, 0)) * scale;
    const double dyy = (g(1, 1) - source.y * g(2, 1)) * scale;
    const Ellipse square{dxx * dxx + dxy * dxy, dxx * dyx + dxy * dyy, dyx * dyx + dyy * dyy};
    constexpr double largest = 1e12;
    if (square.xx < largest && std::abs(square.xy) < largest && square.yy < largest)
        return square;
    return {largest, 0, largest};
}

FootprintPlanner::FootprintPlanner(const PicturePyramid& pyramid, const Homography& toSource)
    : m_pyramid(pyramid), m_toSource(toSource) {}

bool FootprintPlanner::isUneven(const TileRect& block) const {
    double narrow = 1e12;
    double wide = 1;
    for (int i = 0; i < 4; ++i) {
        const Vec2 corner = cornerOf(block, i);
        const double depth = m_toSource.depth(corner);
        const double side = depth > 0 ? ellipse(m_toSource, m_toSource.map(corner), depth).longest() : 1e6;
        narrow = std::min(narrow, std::max(side, 1.0));
        wide = std::max(wide, side);
    }
    constexpr double mostRatio = 2;
    return wide > mostRatio * narrow;
}

std::optional<FootprintPlanner::Corners> FootprintPlanner::shearedCorners(const TileRect& block) const {
    const Homography& g = m_toSource;
    Corners corners;
    for (int i = 0; i < 4; ++i) {
        const Vec2 corner = cornerOf(block, i);
        const double depth = g.depth(corner);
        const Vec2 source = g.map(corner);
        // What a step to the right and one down are in the picture.
        Vec2 right{(g(0, 0) - source.x * g(2, 0)) / depth, (g(1, 0) - source.y * g(2, 0)) / depth};
        Vec2 down{(g(0, 1) - source.x * g(2, 1)) / depth, (g(1, 1) - source.y * g(2, 1)) / depth};
        const bool isTurned = std::abs(right.y) > std::abs(right.x);
        if (isTurned) {
            std::swap(right.x, right.y);
            std::swap(down.x, down.y);
        }
        const double across = down.y - down.x * right.y / right.x;
        const Ellipse exact{right.x * right.x + down.x * down.x, down.x * across, across * across};
        const Ellipse wide = widened(exact);
        // One reading of a footprint that lies further aslant beside its line would miss its corners.
        constexpr double mostCorrelation = 0.25;
        if (!(depth > 0 && std::abs(right.y) <= ShearedBlock::steepest * std::abs(right.x) &&
              std::abs(wide.xy) <= mostCorrelation * std::sqrt(wide.xx * wide.yy)))
            return std::nullopt;
        corners[std::size_t(i)] = isTurned ? Ellipse{exact.yy, exact.xy, exact.xx} : exact;
    }
    return corners;
}

std::optional<FootprintPlanner::Plan> FootprintPlanner::shearedPlan(const TileRect& block) const {
    const std::optional<Corners> corners = shearedCorners(block);
    if (!corners)
        return std::nullopt;
    Plan plan;
    chooseLevel(*corners, 0, plan);
    if (plan.isCubic)
        plan.sheared = ShearedBlock::make(plan.level, plan.toLevel, block, plan.most);
    return plan.sheared ? std::optional(plan) : std::nullopt;
}

void FootprintPlanner::chooseLevel(const Corners& corners, int further, Plan& plan) const {
    double narrowX = 1e12;
    double narrowY = 1e12;
    double largestX = 1;
    double largestY = 1;
    for (const Ellipse& corner : corners) {
        const double xx = std::max(corner.xx * double(plan.share), 1.0);
        const double yy = std::max(corner.yy * double(plan.share), 1.0);
        const double narrowest = std::max(xx, yy) / (longestFootprint * longestFootprint);
        narrowX = std::min(narrowX, std::max(xx, narrowest));
        narrowY = std::min(narrowY, std::max(yy, narrowest));
        largestX = std::max(largestX, xx);
        largestY = std::max(largestY, yy);
    }
    // A level halves the square of a side; the exponent of a double is the whole part of its logarithm.
    int levelX = std::ilogb(narrowX * (1 + 1e-9));
    int levelY = std::ilogb(narrowY * (1 + 1e-9));
    // Different ones across and down of almost the picture's size would take long to make, and much memory.
    if (std::min(levelX, levelY) < 1)
        levelX = levelY = std::min(levelX, levelY);
    levelX += further;
    levelY += further;
    plan.level = m_pyramid.level(levelX, levelY);
    const double scaleX = double(plan.level.width) / m_pyramid.picture().width;
    const double scaleY = double(plan.level.height) / m_pyramid.picture().height;
    plan.toLevel = Homography::scaling(scaleX, scaleY) * m_toSource;
    const int mostX = FootprintTaps::index(float(largestX * scaleX * scaleX), FootprintTaps::widthCount - 2);
    const int mostY = FootprintTaps::index(float(largestY * scaleY * scaleY), FootprintTaps::widthCount - 2);
    plan.most = std::max(mostX, mostY);
    // The picture itself may hold what a reduction has lost already.
    const auto fits = [](int most, int level) {
        return most <= (level == 0 ? CubicTaps::lastThorough : CubicTaps::widthCount);
    };
    plan.isCubic = fits(mostX, levelX) && fits(mostY, levelY);
    plan.most = plan.isCubic ? std::min(plan.most, CubicTaps::widthCount - 1) : plan.most + 1;
}

double FootprintPlanner::placeReadings(const Slant& slant, Plan& plan) const {
    const Ellipse& aslant = slant.footprint;
    const double longX = std::sqrt(aslant.xx) * plan.level.width / m_pyramid.picture().width;
    const double longY = std::sqrt(aslant.yy) * plan.level.height / m_pyramid.picture().height;
    const int gaps = plan.line.count * plan.line.count - 1;
    const double gap = std::sqrt(12 * variance / gaps * slant.amount * double(plan.share));
    const double most = 2 * farthestReading / plan.line.count;
    plan.line.stepX = int(std::min(longX * gap, most) * FootprintTaps::phases);
    plan.line.stepY = int(std::min(longY * gap, most) * FootprintTaps::phases);
    if (aslant.xy < 0)
        plan.line.stepY = -plan.line.stepY;
    return std::max(longX, longY) * gap * plan.line.count / 2;
}

FootprintPlanner::Slant FootprintPlanner::slantOf(const Corners& corners) {
    Slant slant{{1, 0, 1}, 1 - 1.0 / 256, 0};
    for (const Ellipse& corner : corners) {
        const Ellipse wide = widened(corner);
        const double here = wide.xy / std::sqrt(wide.xx * wide.yy);
        const bool isSameWay = corners[0].xy * wide.xy > 0;
        if (std::abs(here) < slant.correlation || !isSameWay) {
            slant.correlation = isSameWay ? std::abs(here) : 0;
            slant.footprint = wide;
        }
    }
    slant.amount = slant.correlation / (1 - slant.correlation);
    return slant;
}

FootprintPlanner::Plan FootprintPlanner::plan(const TileRect& block) const {
    if (const std::optional<Plan> sheared = shearedPlan(block))
        return *sheared;
    Plan plan;
    Corners corners;
    for (int i = 0; i < 4; ++i) {
        const Vec2 corner = cornerOf(block, i);
        const double depth = m_toSource.depth(corner);
        corners[std::size_t(i)] =
            depth > 0 ? ellipse(m_toSource, m_toSource.map(corner), depth) : Ellipse{1e12, 0, 1e12};
    }
    const Slant slant = slantOf(corners);
    if (slant.amount > leastSlant) {
        plan.share = float(1 - slant.correlation);
        plan.line.count = int(std::min<double>(
            std::ceil(std::sqrt(1 + 12 * variance * slant.amount / (widestGap * widestGap))), mostReadings));
    }

    chooseLevel(corners, 0, plan);
    if (plan.line.count > 1) {
        // Where the longest of very different footprints, as in a picture seen nearly from its side, reaches
        // across all of the level that fits the narrowest, the block takes one that it fits as well.
        const double reach = placeReadings(slant, plan);
        if (reach > farthestReading) {
            chooseLevel(corners, std::ilogb(reach * reach / (farthestReading * farthestReading)) + 1, plan);
            placeReadings(slant, plan);
        }
    }
    const int longStep = std::max(plan.line.stepX, std::abs(plan.line.stepY));
    plan.reach = plan.line.count * longStep / 2 >> FootprintTaps::phaseBits;
    if (plan.isCubic) {
        plan.line.stepX *= CubicTaps::phases / FootprintTaps::phases;
        plan.line.stepY *= CubicTaps::phases / FootprintTaps::phases;
        return plan;
    }
    plan.reach += FootprintTaps::of(plan.most).reach() + 2;
    // Near the picture's pixels places are exact.
    const Vec2 first = plan.toLevel.map({block.x + 0.5, block.y + 0.5});
    const auto near = [](double place, int size) {
        return place > 0 ? int(std::min(place, double(size))) : 0;
    };
    plan.originX = near(first.x, plan.level.width);
    plan.originY = near(first.y, plan.level.height);
    return plan;
}

} // namespace framora::raster
