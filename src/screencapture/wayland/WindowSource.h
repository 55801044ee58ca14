#pragma once

#include "screencapture/wayland/WindowStack.h"

#include <memory>
#include <optional>

namespace framora {

/// Where the windows stand, as the compositor tells it. It is asked when the source is made, and its answer
/// read when it is wanted.
class WindowSource {
public:
    virtual ~WindowSource() = default;

    /// The source of this session; null where the compositor tells nothing.
    static std::unique_ptr<WindowSource> ofSession();

    /// Whether there is a compositor that was asked.
    virtual bool available() const = 0;
    /// The windows as they stood when the source was made; may wait for the answer. Nothing when it does not
    /// come.
    virtual std::optional<WindowStack> windows() = 0;
};

} // namespace framora
