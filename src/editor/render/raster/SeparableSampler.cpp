#include "editor/render/raster/SeparableSampler.h"

#include <algorithm>
#include <vector>

namespace framora::raster {

SeparableSampler::SeparableSampler(PixelView picture, ResampleKernel columns, ResampleKernel rows)
    : m_picture(picture), m_columns(std::move(columns)), m_rows(std::move(rows)) {}

void SeparableSampler::read(int x, int y, int count, Float4* out) const {
    if (count <= 0)
        return;
    const ResampleKernel::Taps rows = m_rows.taps(y);
    int firstColumn = m_picture.width;
    int endColumn = 0;
    for (int i = 0; i < count; ++i) {
        const ResampleKernel::Taps taps = m_columns.taps(x + i);
        firstColumn = std::min(firstColumn, taps.first);
        endColumn = std::max(endColumn, taps.first + taps.count);
    }
    const std::size_t columns = std::size_t(endColumn - firstColumn);

    // Down first: one row of mixed source pixels, all channels alike.
    thread_local std::vector<Float4> mixed;
    if (mixed.size() < columns)
        mixed.resize(columns);
    float* sums = reinterpret_cast<float*>(mixed.data());
    for (int tap = 0; tap < rows.count; ++tap) {
        const auto* source =
            reinterpret_cast<const std::uint8_t*>(m_picture.row(rows.first + tap) + firstColumn);
        const float weight = rows.weights[tap];
        if (tap == 0)
            for (std::size_t i = 0; i < columns * 4; ++i)
                sums[i] = weight * float(source[i]);
        else
            for (std::size_t i = 0; i < columns * 4; ++i)
                sums[i] += weight * float(source[i]);
    }
    for (int i = 0; i < count; ++i) {
        const ResampleKernel::Taps taps = m_columns.taps(x + i);
        const Float4* source = mixed.data() + (taps.first - firstColumn);
        Float4 sum = source[0] * splat(taps.weights[0]);
        for (int tap = 1; tap < taps.count; ++tap)
            sum += source[tap] * splat(taps.weights[tap]);
        out[i] = clampPremultiplied(sum, 255);
    }
}

} // namespace framora::raster
