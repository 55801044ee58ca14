#include "editor/render/raster/CubicKernels.h"
#include "editor/render/raster/FixedPoint.h"
#include "editor/render/raster/ResampleKernels.h"

#include <algorithm>

namespace framora::raster::plain {

void interpolateRow(const SourceBox& box, CubicOrigin origin, const FootprintPlaces& places,
                    std::size_t first, const FootprintLine& line, std::size_t count, MixPixel* out) {
    constexpr int fraction = CubicTaps::phases - 1;
    const int lastColumn = (box.width - 3) * CubicTaps::phases - 1;
    const int lastRow = (box.height - 3) * CubicTaps::phases - 1;
    for (std::size_t i = 0; i < count; ++i) {
        int total[4] = {};
        for (int reading = 0; reading < line.count; ++reading) {
            const Footprint place = line.reading(places.at(first + i), reading);
            const int column = std::clamp(place.column - origin.left * CubicTaps::phases, 0, lastColumn);
            const int row = std::clamp(place.row - origin.top * CubicTaps::phases, 0, lastRow);
            const MixPixel* from = box.pixels + std::ptrdiff_t(row >> CubicTaps::phaseBits) * box.width +
                                   (column >> CubicTaps::phaseBits);
            const std::int16_t* across = CubicTaps::weights(place.across, column & fraction);
            const std::int16_t* down = CubicTaps::weights(place.down, row & fraction);
            for (int c = 0; c < 4; ++c) {
                int sum = 0;
                for (int x = 0; x < 4; ++x) {
                    int weighed = 0;
                    for (int y = 0; y < 4; ++y)
                        weighed += mulFixed(from[y * box.width + x].channel[c], down[y]);
                    sum += mulFixed(std::int16_t(weighed), across[x]);
                }
                total[c] += line.count == 1 ? sum : mulFixed(std::int16_t(sum), line.weight());
            }
        }
        const int alpha = std::clamp(total[3], 0, filterOne);
        for (int c = 0; c < 4; ++c)
            out[i].channel[c] = std::int16_t(std::clamp(total[c], 0, alpha) * 4);
    }
}

} // namespace framora::raster::plain
