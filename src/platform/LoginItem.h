#pragma once

namespace framora {

/// Whether the desktop starts the program when the user logs in.
class LoginItem {
public:
    virtual ~LoginItem() = default;
    virtual bool isEnabled() const = 0;
    /// False when that could not be stored; it is then as it was.
    virtual bool setEnabled(bool enabled) = 0;
};

} // namespace framora
