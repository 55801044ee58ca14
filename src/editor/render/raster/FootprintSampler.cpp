#include "editor/render/raster/FootprintSampler.h"

#include "editor/render/raster/CubicKernels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace framora::raster {
namespace {

// The narrow side is widened to the long side over this.
constexpr double longestFootprint = 16;
// Readings are this far apart at most, in their widths.
constexpr double widestGap = 0.9;
constexpr int mostReadings = 12;
// Readings lie no farther from a footprint's middle, in pixels of the level.
constexpr double farthestReading = 64;
// A cubic's variance in squares of its width, about.
constexpr double variance = 0.25;

/// The footprint where it is no narrower than a source pixel.
FootprintSampler::Ellipse widened(const FootprintSampler::Ellipse& exact) {
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

double FootprintSampler::Ellipse::longest() const {
    const double difference = (xx - yy) / 2;
    return std::sqrt((xx + yy) / 2 + std::sqrt(difference * difference + xy * xy));
}

FootprintSampler::Ellipse FootprintSampler::ellipse(const Homography& g, Vec2 source, double depth) {
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

FootprintSampler::FootprintSampler(const PicturePyramid& pyramid, const Homography& toSource)
    : m_pyramid(pyramid), m_toSource(toSource) {}

bool FootprintSampler::isUneven(const TileRect& block) const {
    double narrow = 1e12;
    double wide = 1;
    for (int i = 0; i < 4; ++i) {
        const int row = i / 2;
        const Vec2 corner{double(block.x + i % 2 * block.width), double(block.y + row * block.height)};
        const double depth = m_toSource.depth(corner);
        const double side = depth > 0 ? ellipse(m_toSource, m_toSource.map(corner), depth).longest() : 1e6;
        narrow = std::min(narrow, std::max(side, 1.0));
        wide = std::max(wide, side);
    }
    constexpr double mostRatio = 2;
    return wide > mostRatio * narrow;
}

std::optional<FootprintSampler::Corners> FootprintSampler::shearedCorners(const TileRect& block) const {
    const Homography& g = m_toSource;
    Corners corners;
    for (int i = 0; i < 4; ++i) {
        const int row = i / 2;
        const Vec2 corner{double(block.x + i % 2 * block.width), double(block.y + row * block.height)};
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

std::optional<FootprintSampler::Plan> FootprintSampler::shearedPlan(const TileRect& block) const {
    const std::optional<Corners> corners = shearedCorners(block);
    if (!corners)
        return std::nullopt;
    Plan plan;
    chooseLevel(*corners, 0, plan);
    if (plan.isCubic)
        plan.sheared = ShearedBlock::make(plan.level, plan.toLevel, block, plan.most);
    return plan.sheared ? std::optional(plan) : std::nullopt;
}

void FootprintSampler::chooseLevel(const Corners& corners, int further, Plan& plan) const {
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

double FootprintSampler::placeReadings(const Ellipse& aslant, double slant, Plan& plan) const {
    const double longX = std::sqrt(aslant.xx) * plan.level.width / m_pyramid.picture().width;
    const double longY = std::sqrt(aslant.yy) * plan.level.height / m_pyramid.picture().height;
    const int gaps = plan.line.count * plan.line.count - 1;
    const double gap = std::sqrt(12 * variance / gaps * slant * double(plan.share));
    const double most = 2 * farthestReading / plan.line.count;
    plan.line.stepX = int(std::min(longX * gap, most) * FootprintTaps::phases);
    plan.line.stepY = int(std::min(longY * gap, most) * FootprintTaps::phases);
    if (aslant.xy < 0)
        plan.line.stepY = -plan.line.stepY;
    return std::max(longX, longY) * gap * plan.line.count / 2;
}

FootprintSampler::Plan FootprintSampler::plan(const TileRect& block) const {
    const auto ellipseAt = [&](double x, double y) {
        const double depth = m_toSource.depth({x, y});
        return depth > 0 ? ellipse(m_toSource, m_toSource.map({x, y}), depth) : Ellipse{1e12, 0, 1e12};
    };
    if (const std::optional<Plan> sheared = shearedPlan(block))
        return *sheared;
    Plan plan;
    Corners corners;
    for (int i = 0; i < 4; ++i) {
        const int row = i / 2;
        corners[std::size_t(i)] = ellipseAt(block.x + i % 2 * block.width, block.y + row * block.height);
    }
    // What readings along a line answer for, the widths along the axes need not: as much as everywhere in the
    // block.
    Ellipse aslant{1, 0, 1};
    double correlation = 1 - 1.0 / 256;
    for (const Ellipse& corner : corners) {
        const Ellipse wide = widened(corner);
        const double here = wide.xy / std::sqrt(wide.xx * wide.yy);
        const bool isSameWay = corners[0].xy * wide.xy > 0;
        if (std::abs(here) < correlation || !isSameWay) {
            correlation = isSameWay ? std::abs(here) : 0;
            aslant = wide;
        }
    }
    const double slant = correlation / (1 - correlation);
    constexpr double leastSlant = 0.1;
    if (slant > leastSlant) {
        plan.share = float(1 - correlation);
        plan.line.count = int(std::min<double>(
            std::ceil(std::sqrt(1 + 12 * variance * slant / (widestGap * widestGap))), mostReadings));
    }

    chooseLevel(corners, 0, plan);
    if (plan.line.count > 1) {
        // Where the longest of very different footprints, as in a picture seen nearly from its side, reaches
        // across all of the level that fits the narrowest, the block takes one that it fits as well.
        const double reach = placeReadings(aslant, slant, plan);
        if (reach > farthestReading) {
            chooseLevel(corners, std::ilogb(reach * reach / (farthestReading * farthestReading)) + 1, plan);
            placeReadings(aslant, slant, plan);
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

void FootprintSampler::project(const Plan& plan, const Homography& map, const TileRect& block, int y,
                               int from, int end, FootprintPlaces& out) {
    const int down = y - block.y;
    const auto first = [&](int row) { return map(row, 2) + map(row, 1) * down; };
    // The depth may pass through nothing at any one pixel.
    const double scale = 1 / std::max(std::abs(first(2)), std::abs(map(2, 0)) * block.width);
    const auto at = [&](int row) { return float(first(row) * scale); };
    const auto step = [&](int row, int column) { return float(map(row, column) * scale); };
    const FootprintRow row{{at(0), at(1), at(2), step(0, 0), step(1, 0), step(2, 0)},
                           step(0, 1),
                           step(1, 1),
                           step(2, 1),
                           plan.share,
                           plan.most,
                           plan.isCubic ? CubicTaps::phases : FootprintTaps::phases};
    projectFootprints(row, std::size_t(from), std::size_t(end), out);
}

void FootprintSampler::projectWide(const Plan& plan, const TileRect& block, int y, int from, int end,
                                   FootprintPlaces& out) {
    const Homography map = Homography::translation(-0.5 - plan.originX, -0.5 - plan.originY) * plan.toLevel *
                           Homography::translation(block.x + 0.5, block.y + 0.5);
    project(plan, map, block, y, from, end, out);
    // A pixel that shows some of the picture has its middle elsewhere at times: it shows what is near it.
    constexpr int bits = FootprintTaps::phaseBits;
    const auto bounds = [](int size, int origin) {
        constexpr int half = FootprintTaps::phases / 2;
        return std::pair{-origin * (1 << bits) - half, (size - origin) * (1 << bits) - half};
    };
    const auto [left, right] = bounds(plan.level.width, plan.originX);
    const auto [top, bottom] = bounds(plan.level.height, plan.originY);
    for (int i = from; i < end; ++i) {
        out.columns[i] = std::clamp(out.columns[i], left, right);
        out.rows[i] = std::clamp(out.rows[i], top, bottom);
    }
}

Homography FootprintSampler::cubicMap(const Plan& plan, const TileRect& block, const TileRect& box) {
    return Homography::translation(-1.5 - box.x, -1.5 - box.y) * plan.toLevel *
           Homography::translation(block.x + 0.5, block.y + 0.5);
}

void FootprintSampler::readCubic(const Plan& plan, const TileRect& block, int x, int y, int count,
                                 Float4* out) const {
    const TileRect box = neighbours(plan.level, plan.toLevel, block, plan.reach);
    FootprintPlaces places;
    project(plan, cubicMap(plan, block, box), block, y, x - block.x, x - block.x + count, places);
    for (int i = 0; i < count; ++i) {
        Float4 total = splat(0);
        for (int reading = 0; reading < plan.line.count; ++reading) {
            const Footprint place = plan.line.reading(places.at(std::size_t(x - block.x + i)), reading);
            const auto clamped = [](int at, int size) {
                return std::clamp(at, 0, (size - 3) * CubicTaps::phases - 1);
            };
            const int column = clamped(place.column, box.width);
            const int row = clamped(place.row, box.height);
            const std::int16_t* across = CubicTaps::weights(place.across, column % CubicTaps::phases);
            const std::int16_t* down = CubicTaps::weights(place.down, row % CubicTaps::phases);
            const int left = box.x + column / CubicTaps::phases;
            const int top = box.y + row / CubicTaps::phases;
            for (int j = 0; j < 4; ++j) {
                const std::uint32_t* line = plan.level.row(std::clamp(top + j, 0, plan.level.height - 1));
                Float4 sum = splat(0);
                for (int k = 0; k < 4; ++k)
                    sum += unpack(line[std::clamp(left + k, 0, plan.level.width - 1)]) * splat(across[k]);
                total += sum * splat(down[j]);
            }
        }
        constexpr float one = float(CubicTaps::one) * float(CubicTaps::one);
        out[i] = clampPremultiplied(total * splat(1 / one / float(plan.line.count)), 255);
    }
}

void FootprintSampler::mixCubic(const Plan& plan, const TileRect& block, const TileRect& part, MixPixel* out,
                                int stride) const {
    const TileRect whole = neighbours(plan.level, plan.toLevel, block, plan.reach);
    const TileRect read = neighbours(plan.level, plan.toLevel, part, plan.reach);
    SourceBox box{nullptr, read.width, read.height};
    thread_local std::vector<MixPixel> pixels;
    pixels.resize(std::max(pixels.size(), std::size_t(box.width) * std::size_t(box.height)));
    widenBox(plan.level, read.x, read.y, box, pixels.data());
    box.pixels = pixels.data();
    // The places are told from the block's corner in what the whole block reads, so that they come out alike
    // for any part of it.
    const Homography map = cubicMap(plan, block, whole);
    const CubicOrigin origin{read.x - whole.x, read.y - whole.y};
    const int skipped = part.x - block.x;
    FootprintPlaces places;
    for (int y = part.y; y < part.y + part.height; ++y, out += stride) {
        project(plan, map, block, y, skipped, skipped + part.width, places);
        interpolateRow(box, origin, places, std::size_t(skipped), plan.line, std::size_t(part.width), out);
    }
}

void FootprintSampler::read(const TileRect& block, int x, int y, int count, Float4* out) const {
    const Plan plan = this->plan(block);
    if (plan.sheared)
        return plan.sheared->read(y, x - block.x, count, out);
    if (plan.isCubic)
        return readCubic(plan, block, x, y, count, out);
    FootprintPlaces places;
    projectWide(plan, block, y, x - block.x, x - block.x + count, places);
    constexpr int fraction = FootprintTaps::phases - 1;
    for (int i = 0; i < count; ++i) {
        Float4 total = splat(0);
        for (int reading = 0; reading < plan.line.count; ++reading) {
            const Footprint footprint = plan.line.reading(places.at(std::size_t(x - block.x + i)), reading);
            const FootprintTaps& across = FootprintTaps::of(footprint.across);
            const FootprintTaps& down = FootprintTaps::of(footprint.down);
            const std::int16_t* columns = across.weights(footprint.column & fraction);
            const std::int16_t* rows = down.weights(footprint.row & fraction);
            const int left = plan.originX + (footprint.column >> FootprintTaps::phaseBits) +
                             across.first(footprint.column & fraction);
            const int top = plan.originY + (footprint.row >> FootprintTaps::phaseBits) +
                            down.first(footprint.row & fraction);
            for (int j = 0; j < down.count(); ++j) {
                const std::uint32_t* row = plan.level.row(std::clamp(top + j, 0, plan.level.height - 1));
                Float4 sum = splat(0);
                for (int k = 0; k < across.count(); ++k)
                    sum += unpack(row[std::clamp(left + k, 0, plan.level.width - 1)]) * splat(columns[k]);
                total += sum * splat(rows[j]);
            }
        }
        constexpr float one = float(FootprintTaps::one) * float(FootprintTaps::one);
        out[i] = clampPremultiplied(total * splat(1 / one / float(plan.line.count)), 255);
    }
}

void FootprintSampler::mix(const TileRect& block, const TileRect& part, MixPixel* out, int stride) const {
    const Plan plan = this->plan(block);
    if (plan.sheared)
        plan.sheared->mix(part, out, stride);
    else if (plan.isCubic)
        mixCubic(plan, block, part, out, stride);
    else
        mixWide(plan, block, part, out, stride);
}

void FootprintSampler::mixWide(const Plan& plan, const TileRect& block, const TileRect& part, MixPixel* out,
                               int stride) const {
    constexpr int bits = FootprintTaps::phaseBits;
    thread_local std::array<FootprintPlaces, mostBlockHeight> places;
    const int skipped = part.x - block.x;
    int left = 1 << 30;
    int right = -(1 << 30);
    int top = left;
    int bottom = right;
    for (int y = 0; y < part.height; ++y) {
        FootprintPlaces& row = places[std::size_t(y)];
        projectWide(plan, block, part.y + y, skipped, skipped + part.width, row);
        for (int x = skipped; x < skipped + part.width; ++x) {
            left = std::min(left, row.columns[x]);
            right = std::max(right, row.columns[x]);
            top = std::min(top, row.rows[x]);
            bottom = std::max(bottom, row.rows[x]);
        }
    }
    const int firstColumn = (left >> bits) - plan.reach;
    const int firstRow = (top >> bits) - plan.reach;
    SourceBox box{nullptr, (right >> bits) + plan.reach + 2 - firstColumn,
                  (bottom >> bits) + plan.reach + 2 - firstRow};
    // As much as stays in the nearer caches. Many small ones would overlap too much.
    constexpr std::int64_t mostPixels = 1 << 17;
    if (std::int64_t(box.width) * box.height > mostPixels && part.area() > 1) {
        const bool isAcross = part.width > part.height;
        TileRect half = part;
        (isAcross ? half.width : half.height) /= 2;
        mixWide(plan, block, half, out, stride);
        out += isAcross ? half.width : std::ptrdiff_t(half.height) * stride;
        (isAcross ? half.x : half.y) += isAcross ? half.width : half.height;
        (isAcross ? half.width : half.height) =
            isAcross ? part.width - half.width : part.height - half.height;
        mixWide(plan, block, half, out, stride);
        return;
    }
    thread_local std::vector<MixPixel> pixels;
    const std::size_t area = std::size_t(box.width) * std::size_t(box.height);
    pixels.resize(std::max(pixels.size(), area + footprintSlack));
    widenBox(plan.level, plan.originX + firstColumn, plan.originY + firstRow, box, pixels.data());
    box.pixels = pixels.data();
    for (int y = 0; y < part.height; ++y, out += stride) {
        FootprintPlaces& row = places[std::size_t(y)];
        for (int x = skipped; x < skipped + part.width; ++x) {
            row.columns[x] -= firstColumn * FootprintTaps::phases;
            row.rows[x] -= firstRow * FootprintTaps::phases;
        }
        readFootprints(box, row, std::size_t(skipped), plan.line, std::size_t(part.width), out);
    }
}

} // namespace framora::raster
