#include "screencapture/wayland/OutputScale.h"

#include <algorithm>
#include <cmath>

namespace framora {

double outputScale(int pixelWidth, int pixelHeight, int logicalWidth, int logicalHeight) {
    if (pixelWidth <= 0 || pixelHeight <= 0 || logicalWidth <= 0 || logicalHeight <= 0)
        return 1;
    // Some compositors cut the fraction of a logical size off, some round it.
    const double most = std::min(pixelWidth / (logicalWidth - 0.5), pixelHeight / (logicalHeight - 0.5));
    const double least = std::max(pixelWidth / (logicalWidth + 1.0), pixelHeight / (logicalHeight + 1.0));
    // A scale that divides the pixels exactly may come out a hair below, in a compositor's arithmetic and
    // ours.
    constexpr double kRounding = 1e-6;
    // The longer side tells it more exactly.
    const double quotient = pixelWidth >= pixelHeight ? static_cast<double>(pixelWidth) / logicalWidth
                                                      : static_cast<double>(pixelHeight) / logicalHeight;
    for (const double step : {1.0 / 4, 1.0 / 120}) {
        const double plain = std::round(quotient / step) * step;
        if (plain > least - kRounding && plain < most + kRounding)
            return plain;
    }
    return quotient;
}

} // namespace framora
