#include "editor/render/raster/FixedPoint.h"
#include "editor/render/raster/ProjectiveKernels.h"
#include "editor/render/raster/ResampleKernel.h"
#include "editor/render/raster/ResampleKernels.h"

#include <algorithm>
#include <cmath>

namespace framora::raster {
namespace {

constexpr int positions = 1 << positionBits;

using Table = std::array<std::array<std::int16_t, 4>, std::size_t(positions)>;

Table makeTable() {
    constexpr int one = 1 << 14;
    Table table;
    for (int i = 0; i < positions; ++i) {
        std::array<std::int16_t, 4>& weights = table[std::size_t(i)];
        int sum = 0;
        for (int tap = 0; tap < 4; ++tap) {
            const double distance = tap - 1 - double(i) / positions;
            weights[std::size_t(tap)] = std::int16_t(std::lround(catmullRom(distance) * one));
            sum += weights[std::size_t(tap)];
        }
        // A plain surface stays what it is.
        std::int16_t& largest = weights[i < positions / 2 ? 1 : 2];
        largest = std::int16_t(largest + one - sum);
    }
    return table;
}

} // namespace

const std::array<std::int16_t, 4>& cubicWeights(int position) {
    static const Table table = makeTable();
    return table[std::size_t(position)];
}

namespace plain {

void projectRow(const ProjectiveRow& row, const SourceBox& box, std::size_t count, std::int32_t* columns,
                std::int32_t* rows) {
    const auto place = [](float value, int size) {
        const float most = float((size - 3) * positions - 1);
        return std::int32_t(std::min(std::max(value * float(positions) + 0.5f, 0.0f), most));
    };
    for (std::size_t i = 0; i < count; ++i) {
        const auto index = float(i);
        const float near = 1.0f / (row.w + index * row.stepW);
        columns[i] = place((row.x + index * row.stepX) * near, box.width);
        rows[i] = place((row.y + index * row.stepY) * near, box.height);
    }
}

void interpolateRow(const SourceBox& box, const std::int32_t* columns, const std::int32_t* rows,
                    std::size_t count, MixPixel* out) {
    for (std::size_t i = 0; i < count; ++i) {
        const MixPixel* first =
            box.pixels + std::ptrdiff_t(rows[i] >> positionBits) * box.width + (columns[i] >> positionBits);
        const auto& across = cubicWeights(columns[i] & (positions - 1));
        const auto& down = cubicWeights(rows[i] & (positions - 1));
        int sums[4] = {};
        for (int x = 0; x < 4; ++x)
            for (int c = 0; c < 4; ++c) {
                int column = 0;
                for (int y = 0; y < 4; ++y)
                    column += mulFixed(first[y * box.width + x].channel[c], down[std::size_t(y)]);
                sums[c] += mulFixed(std::int16_t(column), across[std::size_t(x)]);
            }
        const int alpha = std::clamp(sums[3], 0, filterOne);
        for (int c = 0; c < 4; ++c)
            out[i].channel[c] = std::int16_t(std::clamp(sums[c], 0, alpha) * 4);
    }
}

} // namespace plain
} // namespace framora::raster
