#include "editor/render/raster/Resample.h"

#include "editor/render/raster/MixKernels.h"
#include "editor/render/raster/ParallelFor.h"
#include "editor/render/raster/SeparableSampler.h"

#include <algorithm>
#include <vector>

namespace framora::raster {

void resample(PixelView source, MutablePixelView target) {
    if (source.isEmpty() || target.isEmpty())
        return;
    const auto axis = [](int from, int to) { return SeparableSampler::Axis{double(from) / to, 0, 0, to}; };
    const SeparableSampler sampler(source, Alpha::any, axis(source.width, target.width),
                                   axis(source.height, target.height));
    constexpr int rowsAtOnce = 8;
    parallelFor((target.height + rowsAtOnce - 1) / rowsAtOnce, [&](int band) {
        std::vector<MixPixel> row(static_cast<std::size_t>(target.width));
        for (int y = band * rowsAtOnce; y < std::min(target.height, (band + 1) * rowsAtOnce); ++y) {
            sampler.mix({0, y, target.width, 1}, row.data());
            packPixels(row.data(), row.size(), target.row(y));
        }
    });
}

} // namespace framora::raster
