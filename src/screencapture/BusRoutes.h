#pragma once

#include "screencapture/CaptureRoute.h"
#include "screencapture/wayland/ScreenFreezer.h"

#include <memory>
#include <string>
#include <vector>

namespace framora {

/// What a portal is told and what its picture is judged by.
struct PortalOptions {
    /// The window that the desktop's dialog belongs to, as portals name it: "wayland:" and an exported
    /// handle, or "x11:" and a hexadecimal number. Empty for none.
    std::string parentWindow;
    /// The session's outputs, which tell the picture's pixel ratio. Without any it keeps its file's own.
    std::vector<Output> outputs;
};

/// The routes that speak over the session bus. They stand in a module of their own, `framora-portals`,
/// because the bus library costs start-up time that only they should pay.
class BusRoutes {
public:
    virtual ~BusRoutes() = default;

    /// The desktop's Screenshot portal, interactive.
    virtual std::unique_ptr<CaptureRoute> portal(PortalOptions options = {}) = 0;
    /// Has the portal ask the user for the permission to take pictures, by one that nobody sees. Captured,
    /// without a picture, when it is given.
    virtual CaptureResult askPermission(PortalOptions options) = 0;
    /// KWin's own screenshot interface as the source of frozen outputs; null where it is missing or refuses.
    virtual std::unique_ptr<ScreenFreezer> kwinScreens() = 0;
    /// KWin's interactive choice of a window; null where it is missing or refuses.
    virtual std::unique_ptr<CaptureRoute> kwinWindow() = 0;
};

/// Loads the module; null when it is not installed. Never unloaded.
BusRoutes* busRoutes();

} // namespace framora
