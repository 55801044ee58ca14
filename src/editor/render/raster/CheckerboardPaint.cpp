#include "editor/render/raster/CheckerboardPaint.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace framora::raster {
namespace {

/// The mean over [from, to] of the wave that is +1 on even squares and -1 on odd ones.
double meanSign(double from, double to) {
    // Within one square it is that square's to the last bit, so that rows can be known for the same.
    const double square = std::floor(from);
    if (to <= square + 1)
        return square - 2 * std::floor(square / 2) == 0 ? 1 : -1;
    // Its integral is a triangle of height 1.
    const auto integral = [](double t) {
        const double phase = t - 2 * std::floor(t / 2);
        return phase < 1 ? phase : 2 - phase;
    };
    return (integral(to) - integral(from)) / (to - from);
}

} // namespace

double CheckerboardPaint::columnSign(int x) const {
    const auto squares = [this](double pixel) {
        return (m_toLocal(0, 0) * pixel + m_toLocal(0, 2)) / (m_toLocal(2, 2) * m_squareSize);
    };
    return meanSign(squares(x), squares(x + 1));
}

double CheckerboardPaint::rowSign(int y) const {
    const auto squares = [this](double pixel) {
        return (m_toLocal(1, 1) * pixel + m_toLocal(1, 2)) / (m_toLocal(2, 2) * m_squareSize);
    };
    return meanSign(squares(y), squares(y + 1));
}

Float4 CheckerboardPaint::color(double columnSign, double rowSign) const {
    const float middle = (m_firstGrey + m_secondGrey) / 2;
    const float half = (m_firstGrey - m_secondGrey) / 2;
    const float grey = middle + half * float(rowSign * columnSign);
    return Float4{grey, grey, grey, 1};
}

void CheckerboardPaint::shade(int x, int y, int count, Float4* out) const {
    const double row = rowSign(y);
    for (int i = 0; i < count; ++i)
        out[i] = color(columnSign(x + i), row);
}

void CheckerboardPaint::mix(const TileRect& tile, MixPixel* out) const {
    thread_local std::vector<double> columns;
    columns.clear();
    for (int x = tile.x; x < tile.x + tile.width; ++x)
        columns.push_back(columnSign(x));
    double above = 0;
    for (int y = tile.y; y < tile.y + tile.height; ++y, out += tile.width) {
        const double row = rowSign(y);
        if (y > tile.y && row == above)
            std::copy_n(out - tile.width, tile.width, out);
        else
            std::ranges::transform(columns, out, [&](double column) { return toMix(color(column, row)); });
        above = row;
    }
}

} // namespace framora::raster
