#include "editor/render/raster/Homography.h"

#include <cmath>
#include <numbers>

namespace framora::raster {

SinCos sinCos(double degrees) {
    const double turn = std::fmod(degrees, 360.0);
    const double quarters = turn / 90.0;
    if (quarters == std::round(quarters)) {
        constexpr double sines[] = {0, 1, 0, -1};
        const int quarter = (int(quarters) + 4) % 4;
        return {sines[quarter], sines[(quarter + 1) % 4]};
    }
    const double radians = turn * std::numbers::pi / 180.0;
    return {std::sin(radians), std::cos(radians)};
}

Homography Homography::rotation(double degrees) {
    const auto [s, c] = sinCos(degrees);
    return Homography({c, -s, 0, s, c, 0, 0, 0, 1});
}

Homography Homography::tiltX(double degrees, double eyeDistance) {
    const auto [s, c] = sinCos(degrees);
    return Homography({1, 0, 0, 0, c, 0, 0, -s / eyeDistance, 1});
}

Homography Homography::tiltY(double degrees, double eyeDistance) {
    const auto [s, c] = sinCos(degrees);
    return Homography({c, 0, 0, 0, 1, 0, s / eyeDistance, 0, 1});
}

Homography Homography::operator*(const Homography& inner) const {
    std::array<double, 9> product;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            product[std::size_t(row * 3 + column)] = (*this)(row, 0) * inner(0, column) +
                                                     (*this)(row, 1) * inner(1, column) +
                                                     (*this)(row, 2) * inner(2, column);
    return Homography(product);
}

Homography Homography::inverse() const {
    const auto& m = m_m;
    std::array<double, 9> adjugate = {
        m[4] * m[8] - m[5] * m[7], m[2] * m[7] - m[1] * m[8], m[1] * m[5] - m[2] * m[4],
        m[5] * m[6] - m[3] * m[8], m[0] * m[8] - m[2] * m[6], m[2] * m[3] - m[0] * m[5],
        m[3] * m[7] - m[4] * m[6], m[1] * m[6] - m[0] * m[7], m[0] * m[4] - m[1] * m[3]};
    const double determinant = m[0] * adjugate[0] + m[1] * adjugate[3] + m[2] * adjugate[6];
    for (double& value : adjugate)
        value /= determinant;
    return Homography(adjugate);
}

bool Homography::isFinite() const {
    for (const double value : m_m)
        if (!std::isfinite(value))
            return false;
    return true;
}

} // namespace framora::raster
