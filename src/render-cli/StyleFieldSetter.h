#pragma once

#include "editor/model/ScreenshotStyleConfig.h"

#include <QStringList>
#include <utility>

namespace framora {

/// Writes the fields of one style by their names, parts of a field behind a dot, and keeps the rules that tie
/// the selections together, as the editor's controls do.
class StyleFieldSetter {
public:
    explicit StyleFieldSetter(ScreenshotStyleConfig& style) : m_style(style) {}

    /// Gives one line that says what is wrong, and then changes nothing; an empty one when the field is set.
    QString set(const QString& field, const QString& value);

    /// Every name that `set` takes, with the parts of the gradient, in the record's order.
    static QStringList fieldNames();

    /// Fields that take one name of a few, each with the names.
    static QList<std::pair<QString, QStringList>> choices();

private:
    void applySelectionRules(const QString& field);

    ScreenshotStyleConfig& m_style;
};

} // namespace framora
