#pragma once

#include "screencapture/CaptureRoute.h"
#include "screencapture/wayland/ScreenFreezer.h"

#include <memory>

namespace framora {

/// The routes that speak over the session bus. They stand in a module of their own, `framora-portals`,
/// because the bus library costs start-up time that only they should pay.
class BusRoutes {
public:
    virtual ~BusRoutes() = default;

    /// The desktop's Screenshot portal, interactive.
    virtual std::unique_ptr<CaptureRoute> portal() = 0;
    /// KWin's own screenshot interface as the source of frozen outputs; null where it is missing or refuses.
    virtual std::unique_ptr<ScreenFreezer> kwinScreens() = 0;
    /// KWin's interactive choice of a window; null where it is missing or refuses.
    virtual std::unique_ptr<CaptureRoute> kwinWindow() = 0;
};

/// Loads the module; null when it is not installed. Never unloaded.
BusRoutes* busRoutes();

} // namespace framora
