#pragma once

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
};

} // namespace framora
