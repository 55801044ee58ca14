#pragma once

#include "platform/Screens.h"

namespace framora {

/// The outputs of the compositor, the main one first.
class WaylandScreens final : public Screens {
public:
    std::vector<Screen> screens() override;
};

} // namespace framora
