#pragma once

#include "editor/model/ScreenshotStyleConfig.h"

#include <QString>
#include <QVariant>

namespace framora {

/// Writes one field of a style by its name, "gradientConfig.angle" for a nested one.
///
/// Numbers and switches take what converts to them, enumerations their raw value, colours a QColor, sizes a
/// QSizeF; an invalid variant clears an optional field. False, and nothing written, when there is no such
/// field or the value does not fit it.
bool writeStyleField(ScreenshotStyleConfig& config, const QString& field, const QVariant& value);

} // namespace framora
