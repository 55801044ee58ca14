#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace framora {

/// How a slider shows its value.
class SliderValueText : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;
    /// With decimals: exactly so many, rounded. Without: a percentage is cut off to a whole number (99.9
    /// shows as 99), anything else is rounded (99.9 shows as 100).
    Q_INVOKABLE static QString text(double value, int decimals, const QString& unit);
};

} // namespace framora
