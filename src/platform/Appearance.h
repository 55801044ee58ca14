#pragma once

#include <QColor>

namespace framora {

/// How the desktop wants programs to look. notifications::appearanceChanged is posted when any of it changes.
class Appearance {
public:
    virtual ~Appearance() = default;
    virtual bool isDark() const = 0;
    /// What marks selected and active things; opaque.
    virtual QColor accentColor() const = 0;
    virtual bool prefersReducedMotion() const = 0;
};

} // namespace framora
