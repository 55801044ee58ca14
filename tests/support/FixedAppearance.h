#pragma once

#include "platform/Appearance.h"

namespace framora {

/// The appearance that the test says.
class FixedAppearance final : public Appearance {
public:
    bool isDark() const override { return dark; }
    QColor accentColor() const override { return accent; }
    bool prefersReducedMotion() const override { return reducedMotion; }

    bool dark = false;
    QColor accent{0x2f, 0x6f, 0xe4};
    bool reducedMotion = false;
};

} // namespace framora
