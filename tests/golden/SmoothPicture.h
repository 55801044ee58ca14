#pragma once

#include <QImage>
#include <array>

namespace framora::golden {

/// Red, green, blue (premultiplied) and alpha, each 0...1.
using Sample = std::array<double, 4>;

/// A picture known at every point and not only at its pixels: a few long waves, so that any sound
/// reconstruction filter gives it back.
class SmoothPicture {
public:
    /// `phase` makes different pictures; a translucent one has alphas between 0.3 and 1.
    SmoothPicture(int width, int height, double pixelRatio, double phase, bool isTranslucent = false);

    double widthInPoints() const { return m_width / m_pixelRatio; }
    double heightInPoints() const { return m_height / m_pixelRatio; }
    int widthInPixels() const { return m_width; }
    int heightInPixels() const { return m_height; }

    /// `u` and `v` run 0...1 from the top left corner.
    Sample at(double u, double v) const;
    /// The picture at its pixels' centres.
    QImage image() const;

private:
    int m_width;
    int m_height;
    double m_pixelRatio;
    double m_phase;
    bool m_isTranslucent;
};

} // namespace framora::golden
