#pragma once

#include "platform/DesktopPictures.h"

namespace framora {

/// The pictures that the test says.
class FixedDesktopPictures final : public DesktopPictures {
public:
    Lookup lookup() override {
        return [found = pictures](const std::stop_token&) { return found; };
    }

    std::vector<QUrl> pictures;
};

} // namespace framora
