#include "editor/render/raster/CubicTaps.h"

#include "editor/render/raster/ResampleKernel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace framora::raster {
namespace {

constexpr std::size_t entryCount = std::size_t(CubicTaps::widthCount) * CubicTaps::phases;
using Table = std::array<std::int16_t, entryCount * 4>;

/// The smoothest cubic of support 2.
double smoothCubic(double x) {
    x = std::abs(x);
    if (x < 1)
        return (4 - (6 - 3 * x) * x * x) / 6;
    return x < 2 ? (2 - x) * (2 - x) * (2 - x) / 6 : 0;
}

/// How much of a wave of so many cycles a pixel a curve of support 2 passes.
template <typename Curve> double passes(const Curve& curve, double frequency) {
    constexpr int steps = 400;
    double sum = 0;
    for (int i = 0; i < 2 * steps; ++i) {
        const double x = (i + 0.5) / steps;
        sum += 2 * curve(x) * std::cos(2 * std::numbers::pi * frequency * x) / steps;
    }
    return sum;
}

/// The smooth cubic's part in the curve for a picture that becomes smaller by `step`.
double smoothness(double step) {
    const double finest = 0.5 / step;
    const double wanted = passes(catmullRom, finest * stretchedWidth(step));
    const double sharp = passes(catmullRom, finest);
    return std::clamp((sharp - wanted) / (sharp - passes(smoothCubic, finest)), 0.0, 1.0);
}

Table makeTable() {
    Table table;
    std::int16_t* entry = table.data();
    for (int width = 0; width < CubicTaps::widthCount; ++width) {
        const double smooth = smoothness(std::exp2(width / 2.0 / (CubicTaps::widthCount - 1)));
        for (int phase = 0; phase < CubicTaps::phases; ++phase, entry += 4) {
            std::array<int, 4> weights;
            int sum = 0;
            for (int tap = 0; tap < 4; ++tap) {
                const double distance = tap - 1 - double(phase) / CubicTaps::phases;
                const double exact =
                    catmullRom(distance) + smooth * (smoothCubic(distance) - catmullRom(distance));
                sum += weights[std::size_t(tap)] = int(std::lround(exact * CubicTaps::one));
            }
            // A plain surface stays what it is.
            weights[phase < CubicTaps::phases / 2 ? 1 : 2] += CubicTaps::one - sum;
            for (int tap = 0; tap < 4; ++tap)
                entry[tap] = std::int16_t(weights[std::size_t(tap)]);
        }
    }
    return table;
}

} // namespace

const std::int16_t* CubicTaps::weights() {
    static const Table table = makeTable();
    return table.data();
}

} // namespace framora::raster
