#include "editor/render/HexColor.h"

#include <QList>
#include <cstdint>

namespace framora {
namespace {

bool isLetterOrDigit(char32_t character) {
    return QChar::isLetterOrNumber(character) || QChar::isMark(character);
}

int hexDigit(char32_t character) {
    if (character >= U'0' && character <= U'9')
        return static_cast<int>(character - U'0');
    if (character >= U'a' && character <= U'f')
        return static_cast<int>(character - U'a') + 10;
    if (character >= U'A' && character <= U'F')
        return static_cast<int>(character - U'A') + 10;
    return -1;
}

} // namespace

Color parseHexColor(QStringView text) {
    const QList<uint> characters = text.toUcs4();
    auto begin = characters.cbegin();
    auto end = characters.cend();
    while (begin != end && !isLetterOrDigit(*begin))
        ++begin;
    while (begin != end && !isLetterOrDigit(*(end - 1)))
        --end;

    const auto length = end - begin;
    if (length != 3 && length != 6 && length != 8)
        return {0.0, 0.0, 0.0, 1.0};

    std::uint64_t value = 0; // at most eight digits: it cannot overflow
    for (auto it = begin; it != end && hexDigit(*it) >= 0; ++it)
        value = value << 4 | static_cast<std::uint64_t>(hexDigit(*it));

    const auto color = [](std::uint64_t red, std::uint64_t green, std::uint64_t blue, std::uint64_t alpha) {
        const auto component = [](std::uint64_t byte) { return static_cast<double>(byte) / 255.0; };
        return Color{component(red), component(green), component(blue), component(alpha)};
    };
    switch (length) {
    case 3:
        return color((value >> 8) * 17, (value >> 4 & 15) * 17, (value & 15) * 17, 255);
    case 6:
        return color(value >> 16, value >> 8 & 255, value & 255, 255);
    default: // alpha stands first
        return color(value >> 16 & 255, value >> 8 & 255, value & 255, value >> 24);
    }
}

} // namespace framora
