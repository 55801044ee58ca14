#include "wayland/OutputLayout.h"

#include <algorithm>
#include <cmath>

namespace framora {

namespace {

/// What a compositor's arithmetic may be off by, in logical pixels. A true quotient with a scale in steps of
/// 1/120 is a whole number or further away from one.
constexpr double rounding = 5e-4;

bool isCut(int pixels, int logical, double ratio) {
    const double exact = pixels / ratio;
    return exact > logical - rounding && exact < logical + 1 + rounding;
}

bool isRounded(int pixels, int logical, double ratio) {
    return std::abs(pixels / ratio - logical) < 0.5 + rounding;
}

} // namespace

double outputRatio(int pixelWidth, int pixelHeight, int logicalWidth, int logicalHeight) {
    if (pixelWidth <= 0 || pixelHeight <= 0 || logicalWidth <= 0 || logicalHeight <= 0)
        return 1;
    // Both sides have lost their fractions in the same way.
    const auto gives = [&](double ratio) {
        return (isCut(pixelWidth, logicalWidth, ratio) && isCut(pixelHeight, logicalHeight, ratio)) ||
               (isRounded(pixelWidth, logicalWidth, ratio) && isRounded(pixelHeight, logicalHeight, ratio));
    };
    // The longer side tells it more exactly.
    const double quotient = pixelWidth >= pixelHeight ? static_cast<double>(pixelWidth) / logicalWidth
                                                      : static_cast<double>(pixelHeight) / logicalHeight;
    for (const double steps : {4.0, 20.0, 12.0, 120.0}) {
        const double nearest = std::round(quotient * steps);
        const double beyond = quotient * steps < nearest ? nearest - 1 : nearest + 1;
        for (const double count : {nearest, beyond})
            if (count > 0 && gives(count / steps))
                return count / steps;
    }
    return quotient;
}

OutputLayout outputLayout(const OutputFacts& facts) {
    const int scale = std::max(1, facts.wholeScale);
    const bool isTold = facts.width > 0 && facts.height > 0;
    // Some desktops lay their outputs out in device pixels: their scale is what they say, and no quotient.
    const bool countsPixels =
        scale > 1 && facts.width == facts.pixelWidth && facts.height == facts.pixelHeight;
    if (isTold && !countsPixels)
        return {facts.x, facts.y, facts.width, facts.height,
                outputRatio(facts.pixelWidth, facts.pixelHeight, facts.width, facts.height)};
    OutputLayout layout{facts.x, facts.y, facts.pixelWidth / scale, facts.pixelHeight / scale, double(scale)};
    if (countsPixels) {
        layout.x /= scale;
        layout.y /= scale;
    }
    return layout;
}

} // namespace framora
