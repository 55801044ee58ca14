#pragma once

#include "screencapture/PixelImage.h"
#include "screencapture/wayland/Output.h"

#include <memory>
#include <span>
#include <vector>

namespace framora {

/// Where the pixels of the outputs come from: the compositor's own protocol, or another interface of the
/// desktop.
class ScreenFreezer {
public:
    virtual ~ScreenFreezer() = default;

    /// The outputs as they are at one moment, without the pointer, in the order asked for: upright and of
    /// exactly pixelWidth x pixelHeight. The fourth byte of a pixel means nothing. Empty when it cannot be
    /// done; nothing has been shown or asked then.
    virtual std::vector<std::unique_ptr<PixelImage>> freeze(std::span<const Output> outputs) = 0;
};

} // namespace framora
