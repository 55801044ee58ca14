#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace framora {

/// A slider's value as text, and back.
class SliderValueText : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;
    /// With decimals: exactly so many, rounded. Without: a percentage is cut off to a whole number (99.9
    /// shows as 99), anything else is rounded (99.9 shows as 100).
    Q_INVOKABLE static QString text(double value, int decimals, const QString& unit);

    /// The number that somebody typed: "50", "50%", "1,25", "-12°", with `unit` or without. NaN for what is
    /// not a number.
    Q_INVOKABLE static double parse(const QString& typed, const QString& unit);

    /// The nearest value that the slider can stand at: within its range, and for a positive `step` a whole
    /// number of steps from its start. A range that is no multiple of the step still ends at `to`.
    Q_INVOKABLE static double fit(double value, double from, double to, double step);

    /// Where `steps` presses of an arrow key lead. A slider without a step of its own moves by one unit of
    /// the digit that is shown last, from the number that is shown.
    Q_INVOKABLE static double stepped(double value, double steps, double from, double to, double step,
                                      int decimals, const QString& unit);
};

} // namespace framora
