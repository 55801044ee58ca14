#pragma once

#include "editor/model/Color.h"

#include <QColor>

namespace framora {

/// For views and colour panels; components outside 0...1 are clamped. QColor keeps 16 bits a component.
QColor toQColor(const Color& color);
Color fromQColor(const QColor& color);

} // namespace framora
