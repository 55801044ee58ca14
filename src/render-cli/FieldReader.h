#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace framora {

/// A value of the asked type, or a few words that say what the text is not.
struct ReadField {
    QVariant value;
    QString error;
};

/// Reads `text` as a value of `type`, one of the types that the style's fields have. Preset selections are
/// found by name or by position from 1, and "none" is no selection. Checks that a background image is a file
/// that exists.
ReadField readField(QMetaType type, const QString& text);

/// The values of a type that has a name for each of them; none of any other type.
QStringList namedValues(QMetaType type);

} // namespace framora
