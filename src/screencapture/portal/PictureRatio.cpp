#include "screencapture/portal/PictureRatio.h"

#include <algorithm>

namespace framora {

double ratioOfPicture(int width, int height, std::span<const Output> outputs) {
    double largest = 0;
    double ofSize = 0;
    for (const Output& output : outputs) {
        largest = std::max(largest, output.scale);
        if (output.pixelWidth == width && output.pixelHeight == height)
            ofSize = std::max(ofSize, output.scale);
    }
    return ofSize > 0 ? ofSize : largest;
}

} // namespace framora
