#include "editor/render/raster/FixedPoint.h"
#include "editor/render/raster/FootprintKernels.h"
#include "editor/render/raster/ResampleKernels.h"

#include <algorithm>
#include <cmath>

namespace framora::raster::plain {

void projectFootprints(const FootprintRow& row, std::size_t first, std::size_t end, FootprintPlaces& out) {
    const ProjectiveRow& place = row.place;
    const auto whole = [&row](float value) {
        const float inside = std::min(std::max(value, -farthestPlace), farthestPlace);
        return std::int32_t(std::lrint(inside * float(row.phases)));
    };
    for (std::size_t i = first; i < end; ++i) {
        const auto index = float(i);
        const float near = 1.0f / (place.w + index * place.stepW);
        const float x = (place.x + index * place.stepX) * near;
        const float y = (place.y + index * place.stepY) * near;
        const float acrossX = (place.stepX - x * place.stepW) * near;
        const float acrossY = (row.downX - x * row.downW) * near;
        const float downX = (place.stepY - y * place.stepW) * near;
        const float downY = (row.downY - y * row.downW) * near;
        out.columns[i] = whole(x);
        out.rows[i] = whole(y);
        out.across[i] = FootprintTaps::index((acrossX * acrossX + acrossY * acrossY) * row.share, row.most);
        out.down[i] = FootprintTaps::index((downX * downX + downY * downY) * row.share, row.most);
    }
}

void readFootprints(const SourceBox& box, const FootprintPlaces& places, std::size_t first,
                    const FootprintLine& line, std::size_t count, MixPixel* out) {
    for (std::size_t i = 0; i < count; ++i) {
        int total[4] = {};
        for (int reading = 0; reading < line.count; ++reading) {
            const Footprint footprint = line.reading(places.at(first + i), reading);
            const FootprintTaps& across = FootprintTaps::of(footprint.across);
            const FootprintTaps& down = FootprintTaps::of(footprint.down);
            const int column = footprint.column & (FootprintTaps::phases - 1);
            const int row = footprint.row & (FootprintTaps::phases - 1);
            const MixPixel* from =
                box.pixels +
                std::ptrdiff_t((footprint.row >> FootprintTaps::phaseBits) + down.first(row)) * box.width +
                (footprint.column >> FootprintTaps::phaseBits) + across.first(column);
            int sums[4] = {};
            for (int x = 0; x < across.count(); ++x)
                for (int c = 0; c < 4; ++c) {
                    int sum = 0;
                    for (int y = 0; y < down.count(); ++y)
                        sum += mulFixed(from[y * box.width + x].channel[c], down.weights(row)[y]);
                    sums[c] += mulFixed(std::int16_t(sum), across.weights(column)[x]);
                }
            for (int c = 0; c < 4; ++c)
                total[c] += line.count == 1 ? sums[c] : mulFixed(std::int16_t(sums[c]), line.weight());
        }
        const int alpha = std::clamp(total[3], 0, filterOne);
        for (int c = 0; c < 4; ++c)
            out[i].channel[c] = std::int16_t(std::clamp(total[c], 0, alpha) * 4);
    }
}

} // namespace framora::raster::plain
