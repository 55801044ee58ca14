#include "editor/model/ColorConversion.h"

#include <algorithm>

namespace framora {

QColor toQColor(const Color& color) {
    const auto component = [](double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); };
    return QColor::fromRgbF(component(color.red), component(color.green), component(color.blue),
                            component(color.alpha));
}

Color fromQColor(const QColor& color) {
    const QColor rgb = color.toRgb();
    return {rgb.redF(), rgb.greenF(), rgb.blueF(), rgb.alphaF()};
}

} // namespace framora
