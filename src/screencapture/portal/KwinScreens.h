#pragma once

#include "screencapture/MemoryImage.h"
#include "screencapture/wayland/ScreenFreezer.h"

namespace framora {

/// The outputs of a KWin session, through its screenshot interface. It makes a connection for each picture it
/// takes, so that none stands open while the user chooses.
class KwinScreens : public ScreenFreezer {
public:
    /// Null where KWin is missing or does not permit it.
    static std::unique_ptr<KwinScreens> create();

    std::vector<std::unique_ptr<PixelImage>> freeze(std::span<const Output> outputs) override;
};

/// An output's picture in the output's own size. KWin rounds an output's size to whole logical pixels and
/// back, so that at some scales its picture has a row or column more or less: what is too much goes, what is
/// missing repeats the last. Null when the sizes differ by more, or without an image.
std::unique_ptr<MemoryImage> fitted(std::unique_ptr<MemoryImage> image, int width, int height);

} // namespace framora
