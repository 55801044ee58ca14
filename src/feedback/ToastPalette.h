#pragma once

#include "platform/Appearance.h"

#include <QColor>

namespace framora {

/// The toasts' colours. All but the shadow and the lines are opaque.
struct ToastPalette {
    QColor card;
    QColor text;
    QColor secondaryText;
    QColor hairline; ///< Over the card's edge and the thumbnail's.
    QColor tint;     ///< Icons of success, the edit button.
    QColor failure;
    QColor onTint;          ///< Glyphs on a tinted ground.
    double tintOpacity = 0; ///< Of the tint in the ground behind an icon.
    double shadowOpacity = 0;

    static ToastPalette of(const Appearance& appearance);
    friend bool operator==(const ToastPalette&, const ToastPalette&) = default;
};

/// `over` laid on an opaque `ground` at `opacity`.
QColor blended(const QColor& ground, const QColor& over, double opacity);

} // namespace framora
