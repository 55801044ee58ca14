#include "editor/render/raster/SourceBox.h"

#include "editor/render/raster/ResampleKernels.h"

#include <algorithm>
#include <cmath>

namespace framora::raster {

TileRect neighbours(PixelView picture, const Homography& toPicture, const TileRect& part, int reach) {
    const auto inside = [](double value, double size) {
        return value > -4 ? std::min(value, size + 4) : -4; // what is not a number goes to the edge
    };
    double left = picture.width + 4;
    double right = -4;
    double top = picture.height + 4;
    double bottom = -4;
    for (const int x : {part.x, part.x + part.width})
        for (const int y : {part.y, part.y + part.height}) {
            const Vec2 corner = toPicture.map({double(x), double(y)});
            left = std::min(left, inside(corner.x, picture.width));
            right = std::max(right, inside(corner.x, picture.width));
            top = std::min(top, inside(corner.y, picture.height));
            bottom = std::max(bottom, inside(corner.y, picture.height));
        }
    // The neighbours of the pixels that lie between, and one more for rounding.
    const int margin = 3 + reach;
    const int firstColumn = int(std::floor(left)) - margin;
    const int firstRow = int(std::floor(top)) - margin;
    return TileRect{firstColumn, firstRow, int(std::ceil(right)) + margin - firstColumn,
                    int(std::ceil(bottom)) + margin - firstRow};
}

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
