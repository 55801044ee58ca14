#include "screencapture/wayland/WaylandRoutes.h"

#include "screencapture/BusRoutes.h"
#include "screencapture/wayland/ImageCopy.h"
#include "screencapture/wayland/OutputList.h"
#include "screencapture/wayland/OverlayCapture.h"
#include "screencapture/wayland/Screencopy.h"
#include "screencapture/wayland/WaylandConnection.h"
#include "screencapture/wayland/WindowSource.h"

namespace framora {

namespace {

bool isNotHere(const CaptureResult& result) {
    return result.outcome == CaptureResult::Outcome::NotHere;
}

/// The compositor's own copies of its outputs; null where it makes none.
std::unique_ptr<ScreenFreezer> compositorsCopies(WaylandConnection& connection) {
    if (Screencopy::offeredBy(connection))
        return std::make_unique<Screencopy>(connection);
    if (ImageCopy::offeredBy(connection))
        return std::make_unique<ImageCopy>(connection);
    return nullptr;
}

CaptureResult captureWithOverlay(WaylandConnection& connection, ScreenFreezer& freezer, CaptureMode mode) {
    const auto windows = WindowSource::ofSession();
    if (mode == CaptureMode::Window && !windows)
        return CaptureResult::notHere("the compositor does not tell where its windows are");
    return OverlayCapture(connection, freezer, windows.get()).run(mode);
}

CaptureResult captureOverBus(WaylandConnection& connection, const Arguments& arguments,
                             const std::string& why) {
    BusRoutes* const routes = busRoutes();
    if (!routes)
        return CaptureResult::notHere(why);
    if (OverlayCapture::possibleOn(connection))
        if (const auto screens = routes->kwinScreens()) {
            auto result = captureWithOverlay(connection, *screens, arguments.mode);
            if (!isNotHere(result))
                return result;
        }
    if (arguments.mode == CaptureMode::Window)
        if (const auto pick = routes->kwinWindow()) {
            auto result = pick->run(arguments.mode);
            if (!isNotHere(result))
                return result;
        }
    OutputList outputs(connection);
    connection.roundtrip();
    return routes->portal({arguments.parentWindow, outputs.take()})->run(arguments.mode);
}

} // namespace

CaptureResult captureOnWayland(WaylandConnection& connection, const Arguments& arguments) {
    auto result = CaptureResult::notHere("the compositor offers no way to take a picture");
    if (OverlayCapture::possibleOn(connection))
        if (const auto screens = compositorsCopies(connection))
            result = captureWithOverlay(connection, *screens, arguments.mode);
    return isNotHere(result) ? captureOverBus(connection, arguments, result.why) : result;
}

bool routeWithoutAsking(WaylandConnection& connection) {
    if (OverlayCapture::possibleOn(connection) &&
        (Screencopy::offeredBy(connection) || ImageCopy::offeredBy(connection)))
        return true;
    BusRoutes* const routes = busRoutes();
    return routes && routes->kwinScreens();
}

} // namespace framora
