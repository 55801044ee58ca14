#pragma once

#include <array>
#include <cstddef>

namespace framora::raster {

struct Vec2 {
    double x = 0;
    double y = 0;
};

/// A projective map of the plane: (x, y) goes to (X / W, Y / W) with (X, Y, W) = m (x, y, 1), m row by row.
class Homography {
public:
    Homography() = default; ///< The identity.
    explicit Homography(const std::array<double, 9>& m) : m_m(m) {}

    static Homography translation(double x, double y) { return Homography({1, 0, x, 0, 1, y, 0, 0, 1}); }
    static Homography scaling(double x, double y) { return Homography({x, 0, 0, 0, y, 0, 0, 0, 1}); }
    /// Clockwise as seen with y down.
    static Homography rotation(double degrees);
    /// About the x axis through the origin, seen from `eyeDistance` in front of the origin, the bottom coming
    /// nearer.
    static Homography tiltX(double degrees, double eyeDistance);
    /// The same about the y axis, the left coming nearer.
    static Homography tiltY(double degrees, double eyeDistance);

    /// First `inner`, then this.
    Homography operator*(const Homography& inner) const;
    /// The reverse map; not finite where there is none. It keeps the sign of W: W of the reverse is 1 / W.
    Homography inverse() const;

    /// W: how far in front of the eye the point lies, 1 in the picture plane. Not above 0: not in front.
    double depth(Vec2 p) const { return m_m[6] * p.x + m_m[7] * p.y + m_m[8]; }
    Vec2 map(Vec2 p) const {
        const double w = depth(p);
        return {(m_m[0] * p.x + m_m[1] * p.y + m_m[2]) / w, (m_m[3] * p.x + m_m[4] * p.y + m_m[5]) / w};
    }

    bool isFinite() const;
    bool isAffine() const { return m_m[6] == 0 && m_m[7] == 0; }
    bool operator==(const Homography&) const = default;
    double operator()(int row, int column) const { return m_m[std::size_t(row * 3 + column)]; }

private:
    std::array<double, 9> m_m = {1, 0, 0, 0, 1, 0, 0, 0, 1};
};

/// Sine and cosine of an angle in degrees, exact at multiples of 90.
struct SinCos {
    double sin;
    double cos;
};
SinCos sinCos(double degrees);

} // namespace framora::raster
