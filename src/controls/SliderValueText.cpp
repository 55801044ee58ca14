#include "controls/SliderValueText.h"

namespace framora {

QString SliderValueText::text(double value, int decimals, const QString& unit) {
    if (decimals >= 1)
        return QString::asprintf("%.*f", decimals, value) + unit;
    if (unit == u"%")
        return QString::number(static_cast<long long>(value)) + unit;
    return QString::asprintf("%.0f", value) + unit;
}

} // namespace framora
