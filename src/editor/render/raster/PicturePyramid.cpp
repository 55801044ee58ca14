#include "editor/render/raster/PicturePyramid.h"

#include "editor/render/raster/ParallelFor.h"
#include "editor/render/raster/Resample.h"

#include <algorithm>
#include <atomic>
#include <cmath>

namespace framora::raster {
PicturePyramid::PicturePyramid(PixelView picture) : m_picture(picture) {
    std::atomic<bool> isOpaque = true;
    constexpr int rowsAtOnce = 32;
    parallelFor((picture.height + rowsAtOnce - 1) / rowsAtOnce, [&](int band) {
        const int end = std::min(picture.height, (band + 1) * rowsAtOnce);
        for (int y = band * rowsAtOnce; y < end && isOpaque.load(std::memory_order_relaxed); ++y) {
            const std::uint32_t* row = picture.row(y);
            std::uint32_t all = 0xff000000u;
            for (int x = 0; x < picture.width; ++x)
                all &= row[x];
            if (all != 0xff000000u)
                isOpaque.store(false, std::memory_order_relaxed);
        }
    });
    m_isOpaque = isOpaque;
}

PixelView PicturePyramid::level(int level) const {
    if (level <= 0)
        return m_picture;
    level = std::min(level, levelCount - 1);
    const auto index = std::size_t(level);
    std::call_once(m_made[index], [&] {
        const double factor = std::exp2(-level / 2.0);
        m_levels[index] = PixelBuffer::create(std::max(1, int(std::lround(m_picture.width * factor))),
                                              std::max(1, int(std::lround(m_picture.height * factor))));
        // From the next larger half, quarter and so on, which most levels are asked for with anyway.
        resample(this->level(level % 2 ? level - 1 : level - 2), m_levels[index].mutableView());
    });
    return m_levels[index].isEmpty() ? m_picture : m_levels[index].view();
}

} // namespace framora::raster
