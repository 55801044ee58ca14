#include "golden/SmoothPicture.h"

#include <cmath>
#include <numbers>

namespace framora::golden {

SmoothPicture::SmoothPicture(int width, int height, double pixelRatio, double phase, bool isTranslucent)
    : m_width(width), m_height(height), m_pixelRatio(pixelRatio), m_phase(phase),
      m_isTranslucent(isTranslucent) {}

Sample SmoothPicture::at(double u, double v) const {
    const auto wave = [this](double cycles, double shift) {
        return 0.5 + 0.46 * std::sin(2.0 * std::numbers::pi * cycles + shift + m_phase);
    };
    const double alpha = m_isTranslucent ? 0.65 + 0.35 * std::sin(4.0 * u + 3.0 * v + m_phase) : 1.0;
    return {alpha * wave(0.9 * u + 0.5 * v, 0.0), alpha * wave(0.4 * u - 1.1 * v, 2.0),
            alpha * wave(0.7 * u * v + 0.3 * u, 4.0), alpha};
}

QImage SmoothPicture::image() const {
    QImage image(m_width, m_height, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < m_height; ++y)
        for (int x = 0; x < m_width; ++x) {
            const Sample sample = at((x + 0.5) / m_width, (y + 0.5) / m_height);
            const auto byte = [&sample](int i) {
                return static_cast<quint32>(std::lround(255.0 * sample[i]));
            };
            reinterpret_cast<quint32*>(image.scanLine(y))[x] =
                byte(3) << 24 | byte(0) << 16 | byte(1) << 8 | byte(2);
        }
    image.setDevicePixelRatio(m_pixelRatio);
    return image;
}

} // namespace framora::golden
