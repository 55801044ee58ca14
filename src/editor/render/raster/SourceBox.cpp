#include "editor/render/raster/SourceBox.h"

#include "editor/render/raster/ResampleKernels.h"

#include <algorithm>

namespace framora::raster {

void widenBox(PixelView picture, int firstColumn, int firstRow, const SourceBox& box, MixPixel* pixels) {
    const int left = std::clamp(-firstColumn, 0, box.width - 1);
    const int from = std::clamp(firstColumn + left, 0, picture.width - 1);
    const int count = std::clamp(picture.width - from, 1, box.width - left);
    for (int y = 0; y < box.height; ++y, pixels += box.width) {
        const std::uint32_t* row = picture.row(std::clamp(firstRow + y, 0, picture.height - 1)) + from;
        widenRow(row, std::size_t(count), pixels + left);
        std::fill_n(pixels, left, pixels[left]);
        std::fill(pixels + left + count, pixels + box.width, pixels[left + count - 1]);
    }
}

} // namespace framora::raster
