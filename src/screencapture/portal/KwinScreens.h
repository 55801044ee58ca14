#pragma once

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

} // namespace framora
