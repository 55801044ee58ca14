#pragma once

#include "platform/DesktopShortcuts.h"

namespace framora {

/// No compositor tells which shortcuts it has given away.
class WaylandDesktopShortcuts final : public DesktopShortcuts {
public:
    bool isTaken(std::uint16_t, std::uint64_t) override { return false; }
};

} // namespace framora
