#include "render-cli/FieldValues.h"

#include "editor/render/HexColor.h"

#include <algorithm>
#include <cmath>

namespace framora {

std::optional<double> numberFromText(const QString& text) {
    // The conversion itself also takes surrounding blanks, "inf" and "nan".
    if (text.isEmpty() || text.front().isSpace() || text.back().isSpace())
        return std::nullopt;
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(number))
        return std::nullopt;
    return number;
}

std::optional<bool> switchFromText(const QString& text) {
    if (text == u"true")
        return true;
    if (text == u"false")
        return false;
    return std::nullopt;
}

std::optional<Color> colorFromText(const QString& text) {
    const QString digits = text.startsWith(u'#') ? text.mid(1) : text;
    if (digits.size() != 3 && digits.size() != 6 && digits.size() != 8)
        return std::nullopt;
    const auto isHexDigit = [](QChar c) {
        return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
    };
    if (!std::all_of(digits.cbegin(), digits.cend(), isHexDigit))
        return std::nullopt;
    return parseHexColor(digits);
}

std::optional<QList<Color>> colorsFromText(const QString& text) {
    QList<Color> colors;
    for (const QString& part : text.split(u',')) {
        const std::optional<Color> color = colorFromText(part);
        if (!color)
            return std::nullopt;
        colors << *color;
    }
    return colors;
}

} // namespace framora
