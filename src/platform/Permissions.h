#pragma once

#include <QString>

class QWindow;

namespace framora {

class Permissions {
public:
    virtual ~Permissions() = default;
    /// Whether key presses of other programs can be watched. Never asks the user.
    virtual bool isAccessibilityTrusted() = 0;
    /// The same, but lets the desktop ask the user where they have not been asked yet; does not wait for
    /// their answer.
    virtual bool requestAccessibility() = 0;
    /// Whether the screen may be captured. Never asks the user; may be slow.
    virtual bool canCaptureScreen() = 0;
    /// Has the desktop ask the user, who looks at `window`, whether it may; does not wait for the answer.
    /// False where it has nothing to ask: its settings are the place then. `window` may be null.
    virtual bool requestScreenCapture(QWindow*) { return false; }
    /// The command line by which the user makes the desktop forget that they did not allow it, so that it
    /// asks again; empty where it remembers no such thing.
    virtual QString commandToForgetDenial() { return {}; }
};

} // namespace framora
