#include "editor/render/raster/PicturePyramid.h"

#include "editor/render/raster/Opacity.h"
#include "editor/render/raster/Resample.h"

#include <algorithm>
#include <cmath>

namespace framora::raster {

PicturePyramid::PicturePyramid(PixelView picture)
    : m_picture(picture), m_isOpaque(raster::isOpaque(picture)) {}

PixelView PicturePyramid::level(int across, int down) const {
    across = std::clamp(across, 0, levelCount - 1);
    down = std::clamp(down, 0, levelCount - 1);
    if (across == 0 && down == 0)
        return m_picture;
    Level& level = m_levels[std::size_t(across)][std::size_t(down)];
    std::call_once(level.made, [&] {
        const auto reduced = [](int size, int steps) {
            return std::max(1, int(std::lround(size * std::exp2(-steps / 2.0))));
        };
        level.pixels = PixelBuffer::create(reduced(m_picture.width, across), reduced(m_picture.height, down));
        // From the next larger half, quarter and so on, which most levels are asked for with anyway.
        const auto larger = [](int steps) { return steps - (steps % 2 ? 1 : 2); };
        const int fromAcross = across >= down ? larger(across) : across;
        const int fromDown = down >= across ? larger(down) : down;
        // A level of the picture's own size across or down alone is kept for nobody.
        const bool isPicture = fromAcross == 0 || fromDown == 0;
        resample(isPicture ? m_picture : this->level(fromAcross, fromDown), level.pixels.mutableView());
    });
    return level.pixels.isEmpty() ? m_picture : level.pixels.view();
}

} // namespace framora::raster
