#pragma once

#include "screencapture/wayland/WindowStack.h"

#include <optional>

namespace framora {

/// Where the windows stand, as the compositor tells it.
class WindowSource {
public:
    virtual ~WindowSource() = default;

    /// The windows as they stood when the source was made; may wait for the answer. Nothing when it
    /// does not come.
    virtual std::optional<WindowStack> windows() = 0;
};

} // namespace framora
