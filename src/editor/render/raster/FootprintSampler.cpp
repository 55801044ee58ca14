#include "editor/render/raster/FootprintSampler.h"

#include "editor/render/raster/ResampleKernels.h"

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

FootprintSampler::Plan FootprintSampler::plan(const TileRect& block) const {
    const auto ellipseAt = [this](double x, double y) {
        const double depth = m_toSource.depth({x, y});
        return depth > 0 ? ellipse(m_toSource, m_toSource.map({x, y}), depth) : Ellipse{1e12, 0, 1e12};
    };
    Plan plan;
    std::array<Ellipse, 4> corners;
    for (int i = 0; i < 4; ++i)
        corners[std::size_t(i)] = ellipseAt(block.x + i % 2 * block.width, block.y + i / 2 * block.height);
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

    double narrow = 1e12;
    double largest = 1;
    for (const Ellipse& corner : corners) {
        const double xx = std::max(corner.xx * double(plan.share), 1.0);
        const double yy = std::max(corner.yy * double(plan.share), 1.0);
        constexpr double most = longestFootprint * longestFootprint;
        narrow = std::min(narrow, std::max(std::min(xx, yy), std::max(xx, yy) / most));
        largest = std::max(largest, std::max(xx, yy));
    }
    // A level halves the square of a side; the exponent of a double is the whole part of its logarithm.
    plan.level = m_pyramid.level(std::ilogb(narrow * (1 + 1e-9)));
    const double scaleX = double(plan.level.width) / m_pyramid.picture().width;
    const double scaleY = double(plan.level.height) / m_pyramid.picture().height;
    plan.toLevel = Homography::scaling(scaleX, scaleY) * m_toSource;
    const double most = largest * std::max(scaleX * scaleX, scaleY * scaleY);
    plan.most = FootprintTaps::index(float(most), FootprintTaps::widthCount - 2) + 1;

    if (plan.line.count > 1) {
        const int gaps = plan.line.count * plan.line.count - 1;
        const double gap =
            std::sqrt(12 * variance / gaps * slant * double(plan.share)) * FootprintTaps::phases;
        constexpr double farthest = 1 << 14;
        plan.line.stepX = int(std::min(std::sqrt(aslant.xx) * scaleX * gap, farthest));
        plan.line.stepY = int(std::min(std::sqrt(aslant.yy) * scaleY * gap, farthest));
        if (aslant.xy < 0)
            plan.line.stepY = -plan.line.stepY;
    }
    const int longStep = std::max(plan.line.stepX, std::abs(plan.line.stepY));
    plan.reach = FootprintTaps::of(plan.most).reach() + 2 +
                 (plan.line.count * longStep / 2 >> FootprintTaps::phaseBits);
    // Near the picture's pixels places are exact.
    const Vec2 first = plan.toLevel.map({block.x + 0.5, block.y + 0.5});
    const auto near = [](double place, int size) {
        return place > 0 ? int(std::min(place, double(size))) : 0;
    };
    plan.originX = near(first.x, plan.level.width);
    plan.originY = near(first.y, plan.level.height);
    return plan;
}

void FootprintSampler::project(const Plan& plan, const TileRect& block, int y, int count,
                               Footprint* out) const {
    const Homography map = Homography::translation(-0.5 - plan.originX, -0.5 - plan.originY) * plan.toLevel *
                           Homography::translation(block.x + 0.5, y + 0.5);
    // The depth may pass through nothing at any one pixel.
    const double scale = 1 / std::max(std::abs(map(2, 2)), std::abs(map(2, 0)) * block.width);
    const auto at = [&](int row, int column) { return float(map(row, column) * scale); };
    const FootprintRow row{{at(0, 2), at(1, 2), at(2, 2), at(0, 0), at(1, 0), at(2, 0)},
                           at(0, 1),
                           at(1, 1),
                           at(2, 1),
                           plan.share,
                           plan.most};
    projectFootprints(row, std::size_t(count), out);
    // A pixel that shows some of the picture has its middle elsewhere at times: it shows what is near it.
    constexpr int bits = FootprintTaps::phaseBits;
    const auto bounds = [](int size, int origin) {
        constexpr int half = FootprintTaps::phases / 2;
        return std::pair{-origin * (1 << bits) - half, (size - origin) * (1 << bits) - half};
    };
    const auto [left, right] = bounds(plan.level.width, plan.originX);
    const auto [top, bottom] = bounds(plan.level.height, plan.originY);
    for (int i = 0; i < count; ++i) {
        out[i].column = std::clamp(out[i].column, left, right);
        out[i].row = std::clamp(out[i].row, top, bottom);
    }
}

void FootprintSampler::read(const TileRect& block, int x, int y, int count, Float4* out) const {
    const Plan plan = this->plan(block);
    std::array<Footprint, mostBlockWidth> footprints;
    project(plan, block, y, x - block.x + count, footprints.data());
    constexpr int fraction = FootprintTaps::phases - 1;
    for (int i = 0; i < count; ++i) {
        Float4 total = splat(0);
        for (int reading = 0; reading < plan.line.count; ++reading) {
            const Footprint footprint = plan.line.reading(footprints[std::size_t(x - block.x + i)], reading);
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

bool FootprintSampler::mix(const TileRect& block, const TileRect& part, MixPixel* out, int stride) const {
    const Plan plan = this->plan(block);
    constexpr int bits = FootprintTaps::phaseBits;
    thread_local std::vector<Footprint> footprints;
    footprints.resize(std::size_t(mostBlockWidth) * std::size_t(part.height));
    int left = 1 << 30;
    int right = -(1 << 30);
    int top = left;
    int bottom = right;
    for (int y = 0; y < part.height; ++y) {
        Footprint* row = footprints.data() + std::ptrdiff_t(y) * mostBlockWidth;
        project(plan, block, part.y + y, part.x - block.x + part.width, row);
        for (int x = part.x - block.x; x < part.x - block.x + part.width; ++x) {
            left = std::min(left, row[x].column);
            right = std::max(right, row[x].column);
            top = std::min(top, row[x].row);
            bottom = std::max(bottom, row[x].row);
        }
    }
    const int firstColumn = (left >> bits) - plan.reach;
    const int firstRow = (top >> bits) - plan.reach;
    SourceBox box{nullptr, (right >> bits) + plan.reach + 2 - firstColumn,
                  (bottom >> bits) + plan.reach + 2 - firstRow};
    // As much as stays in the nearer caches, or less than what is read of it anyway.
    constexpr std::int64_t mostPixels = 1 << 17;
    if (std::int64_t(box.width) * box.height > mostPixels)
        return false;
    thread_local std::vector<MixPixel> pixels;
    const std::size_t area = std::size_t(box.width) * std::size_t(box.height);
    pixels.resize(std::max(pixels.size(), area + footprintSlack));
    widenBox(plan.level, plan.originX + firstColumn, plan.originY + firstRow, box, pixels.data());
    box.pixels = pixels.data();
    for (int y = 0; y < part.height; ++y, out += stride) {
        Footprint* row = footprints.data() + std::ptrdiff_t(y) * mostBlockWidth + (part.x - block.x);
        for (int x = 0; x < part.width; ++x) {
            row[x].column -= firstColumn * FootprintTaps::phases;
            row[x].row -= firstRow * FootprintTaps::phases;
        }
        readFootprints(box, row, plan.line, std::size_t(part.width), out);
    }
    return true;
}

} // namespace framora::raster
