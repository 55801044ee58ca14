#pragma once

namespace framora {

/// Owns a session's clipboard with a picture.
class ClipboardOwner {
public:
    virtual ~ClipboardOwner() = default;

    /// Takes the clipboard. False when it could not be taken.
    virtual bool own() = 0;
    /// Serves until somebody else owns the clipboard and what was under way has been taken, or until the
    /// session is over.
    virtual void run() = 0;
};

} // namespace framora
