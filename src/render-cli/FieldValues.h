#pragma once

#include "editor/model/Color.h"

#include <QList>
#include <QString>
#include <optional>

namespace framora {

// Values as scripts write them, read strictly: what is not wholly a value is none.

/// A finite number with a decimal point, whatever the locale.
std::optional<double> numberFromText(const QString& text);
/// "true" or "false".
std::optional<bool> switchFromText(const QString& text);
/// RGB, RRGGBB or AARRGGBB, with or without one leading '#'.
std::optional<Color> colorFromText(const QString& text);
/// Colours between commas, at least one.
std::optional<QList<Color>> colorsFromText(const QString& text);

} // namespace framora
