#pragma once

#include "screencapture/PixelFormat.h"
#include "screencapture/PixelImage.h"

#include <optional>

namespace framora {

/// How a shared buffer's format (wl_shm.format) lays out its pixels; nothing for formats that are not read.
std::optional<PixelFormat> shmPixelFormat(uint32_t format);

/// A buffer as the compositor filled it: turned as the panel hangs, perhaps upside down.
struct PanelPixels {
    const uint8_t* bytes = nullptr;
    int width = 0; ///< of the panel, in pixels
    int height = 0;
    std::size_t stride = 0; ///< bytes
    PixelFormat format;
    bool bottomUp = false;
    int transform = 0; ///< wl_output.transform of the output
};

/// Copies the pixels the way the user sees them. `upright` has the panel's size, sides exchanged where the
/// transform lays it on its side.
void copyUpright(const PanelPixels& from, PixelImage& upright);

} // namespace framora
