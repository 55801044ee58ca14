#include "editor/render/raster/FootprintSampler.h"

#include "editor/render/raster/CubicKernels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace framora::raster {

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
    const Plan plan = m_planner.plan(block);
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
    const Plan plan = m_planner.plan(block);
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
