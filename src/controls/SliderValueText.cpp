#include "controls/SliderValueText.h"

#include <QLocale>
#include <algorithm>
#include <cmath>
#include <limits>

namespace framora {

QString SliderValueText::text(double value, int decimals, const QString& unit) {
    if (decimals >= 1)
        return QString::asprintf("%.*f", decimals, value) + unit;
    if (unit == u"%")
        return QString::number(static_cast<long long>(value)) + unit;
    return QString::asprintf("%.0f", value) + unit;
}

double SliderValueText::parse(const QString& typed, const QString& unit) {
    QString number = typed.trimmed();
    for (const QString& suffix : {unit, QStringLiteral("%"), QStringLiteral("°")})
        if (!suffix.isEmpty() && number.endsWith(suffix)) {
            number = number.chopped(suffix.size()).trimmed();
            break;
        }
    number.replace(u',', u'.').replace(QChar(0x2212), u'-');
    QLocale plain = QLocale::c();
    plain.setNumberOptions(QLocale::RejectGroupSeparator);
    bool valid = false;
    const double value = plain.toDouble(number, &valid);
    return valid && std::isfinite(value) ? value : std::numeric_limits<double>::quiet_NaN();
}

double SliderValueText::fit(double value, double from, double to, double step) {
    if (step > 0)
        value = from + std::round((value - from) / step) * step;
    return std::clamp(value, from, to);
}

double SliderValueText::stepped(double value, double steps, double from, double to, double step, int decimals,
                                const QString& unit) {
    if (step > 0)
        return fit(value + steps * step, from, to, step);
    const double shown = parse(text(value, decimals, unit), unit);
    // In whole units, so that a hundred presses of 0.01 make exactly 1.
    const double unitsInOne = std::pow(10.0, decimals);
    return std::clamp(std::round(shown * unitsInOne + steps) / unitsInOne, from, to);
}

} // namespace framora
