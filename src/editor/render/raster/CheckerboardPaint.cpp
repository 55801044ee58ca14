#include "editor/render/raster/CheckerboardPaint.h"

#include <cmath>

namespace framora::raster {
namespace {

/// The mean over [from, to] of the wave that is +1 on even squares and -1 on odd ones.
double meanSign(double from, double to) {
    // Its integral is a triangle of height 1.
    const auto integral = [](double t) {
        const double phase = t - 2 * std::floor(t / 2);
        return phase < 1 ? phase : 2 - phase;
    };
    return (integral(to) - integral(from)) / (to - from);
}

} // namespace

void CheckerboardPaint::shade(int x, int y, int count, Float4* out) const {
    const auto column = [&](double pixel) {
        return (m_toLocal(0, 0) * pixel + m_toLocal(0, 2)) / (m_toLocal(2, 2) * m_squareSize);
    };
    const auto row = [&](double pixel) {
        return (m_toLocal(1, 1) * pixel + m_toLocal(1, 2)) / (m_toLocal(2, 2) * m_squareSize);
    };
    const double vertical = meanSign(row(y), row(y + 1));
    const float middle = (m_firstGrey + m_secondGrey) / 2;
    const float half = (m_firstGrey - m_secondGrey) / 2;
    for (int i = 0; i < count; ++i) {
        const double sign = vertical * meanSign(column(x + i), column(x + i + 1));
        const float grey = middle + half * float(sign);
        out[i] = Float4{grey, grey, grey, 1};
    }
}

} // namespace framora::raster
