#pragma once

#include <QMetaType>

namespace framora {

/// An sRGB colour; components run 0...1 and are not premultiplied.
struct Color {
    Q_GADGET
    Q_PROPERTY(double red MEMBER red)
    Q_PROPERTY(double green MEMBER green)
    Q_PROPERTY(double blue MEMBER blue)
    Q_PROPERTY(double alpha MEMBER alpha)
public:
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;
    double alpha = 1.0;

    static constexpr Color white() { return {1.0, 1.0, 1.0, 1.0}; }
    static constexpr Color clear() { return {0.0, 0.0, 0.0, 0.0}; }

    bool operator==(const Color&) const = default;
};

} // namespace framora
