#include "feedback/ToastPalette.h"

#include <cmath>

namespace framora {
namespace {

/// Rec. 709 luma of the encoded values, 0 to 1.
double luma(const QColor& color) {
    return 0.2126 * color.redF() + 0.7152 * color.greenF() + 0.0722 * color.blueF();
}

/// An accent as dark as the card would be lost on it: mixes it towards the text until it stands out.
QColor legible(QColor accent, const QColor& card, const QColor& text) {
    constexpr double leastDistance = 0.34;
    for (int step = 0; step < 8 && std::abs(luma(accent) - luma(card)) < leastDistance; ++step)
        accent = blended(accent, text, 0.12);
    return accent;
}

} // namespace

QColor blended(const QColor& ground, const QColor& over, double opacity) {
    const auto mix = [&](float a, float b) { return float(a + (b - a) * opacity); };
    return QColor::fromRgbF(mix(ground.redF(), over.redF()), mix(ground.greenF(), over.greenF()),
                            mix(ground.blueF(), over.blueF()));
}

ToastPalette ToastPalette::of(const Appearance& appearance) {
    ToastPalette palette;
    if (appearance.isDark()) {
        palette.card = QColor(0x2a, 0x2b, 0x2f);
        palette.text = QColor(0xf4, 0xf4, 0xf6);
        palette.secondaryText = QColor(0xa3, 0xa6, 0xad);
        palette.hairline = QColor(255, 255, 255, 31);
        palette.failure = QColor(0xff, 0x6b, 0x62);
        palette.tintOpacity = 0.24;
        palette.shadowOpacity = 0.5;
    } else {
        palette.card = QColor(0xfd, 0xfd, 0xfe);
        palette.text = QColor(0x1b, 0x1c, 0x1f);
        palette.secondaryText = QColor(0x6a, 0x6d, 0x75);
        palette.hairline = QColor(0, 0, 0, 26);
        palette.failure = QColor(0xd9, 0x2d, 0x20);
        palette.tintOpacity = 0.13;
        palette.shadowOpacity = 0.26;
    }
    palette.tint = legible(appearance.accentColor(), palette.card, palette.text);
    palette.onTint = luma(palette.tint) > 0.68 ? QColor(0x1b, 0x1c, 0x1f) : QColor(Qt::white);
    return palette;
}

} // namespace framora
