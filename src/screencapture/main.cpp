#include "editor/render/raster/PngEncoder.h"
#include "screencapture/Arguments.h"
#include "screencapture/BusRoutes.h"
#include "screencapture/CaptureSession.h"
#include "screencapture/PictureHandover.h"
#include "screencapture/SingleInstance.h"
#include "screencapture/XConnection.h"
#include "screencapture/wayland/CaptureLock.h"
#include "screencapture/wayland/SessionClipboard.h"
#include "screencapture/wayland/WaylandConnection.h"
#include "screencapture/wayland/WaylandRoutes.h"

#include <csignal>
#include <cstdio>
#include <exception>
#include <new>

namespace framora {
namespace {

enum ExitCode { Done = 0, Cancelled = 1, BadUsage = 2, Failed = 3 };

int failed(const std::string& why) {
    std::fprintf(stderr, "framora-screencapture: %s\n", why.c_str());
    return Failed;
}

// Whoever started a second capture sees the first one.
int alreadyOpen() {
    failed("a capture is already open");
    return Cancelled;
}

/// Puts a route's picture where the session's programs find it.
int finish(CaptureResult result) {
    switch (result.outcome) {
    case CaptureResult::Outcome::Cancelled:
        return Cancelled;
    case CaptureResult::Outcome::NotHere:
    case CaptureResult::Outcome::Failed:
        return failed(result.why);
    case CaptureResult::Outcome::Captured:
        break;
    }
    if (!leaveOnSessionClipboard(std::move(result.png)))
        return failed("the clipboard cannot be taken");
    if (result.whenSafe)
        result.whenSafe();
    return Done;
}

int captureOnX(const XConnection& connection, CaptureMode mode) {
    if (!claimSingleInstance(connection))
        return alreadyOpen();
    CaptureSession session(connection, mode);
    switch (session.run()) {
    case CaptureSession::Outcome::Cancelled:
        return Cancelled;
    case CaptureSession::Outcome::Failed:
        return failed(session.failure());
    case CaptureSession::Outcome::Captured:
        break;
    }
    Picture picture = session.takePicture();
    const raster::PixelView view{reinterpret_cast<const std::byte*>(picture.image->row(picture.part.y)) +
                                     static_cast<std::ptrdiff_t>(picture.part.x) * 4,
                                 picture.part.width, picture.part.height,
                                 static_cast<std::ptrdiff_t>(picture.image->strideBytes())};
    const auto png =
        raster::encodePng(view, raster::pixelsPerMetre(72 * session.pixelRatio()), raster::PngSpeed::fastest);
    if (png.empty())
        return failed("the picture is too large for the memory there is");
    // A server that is full, or no process to leave behind: the program has a connection already.
    return leaveOnXClipboard(png, [&picture] { picture.image->abandon(); }) || handToProgram(png)
               ? Done
               : failed("the clipboard cannot be taken");
}

/// A session is the one of the compositor that WAYLAND_DISPLAY names, if it answers; an X server beside it
/// shows only a part of it.
int capture(const Arguments& arguments) {
    {
        WaylandConnection wayland;
        if (wayland.valid()) {
            const CaptureLock lock;
            return lock.claimed() ? finish(captureOnWayland(wayland, arguments)) : alreadyOpen();
        }
        if (wayland.silent())
            return failed("the compositor does not answer");
    }
    const XConnection connection;
    if (connection.valid())
        return captureOnX(connection, arguments.mode);
    BusRoutes* const routes = busRoutes();
    if (!routes)
        return failed("no display can be opened");
    return finish(routes->portal({arguments.parentWindow, {}})->run(arguments.mode));
}

int askPermission(const Arguments& arguments) {
    BusRoutes* const routes = busRoutes();
    if (!routes)
        return failed("the desktop cannot be asked");
    const CaptureResult result = routes->askPermission({arguments.parentWindow, {}});
    if (result.outcome == CaptureResult::Outcome::Captured)
        return Done;
    return result.outcome == CaptureResult::Outcome::Cancelled ? Cancelled : failed(result.why);
}

/// Whether there is a route that asks nobody.
int checkRoute() {
    WaylandConnection wayland;
    if (wayland.silent())
        return failed("the compositor does not answer");
    if (wayland.valid() ? routeWithoutAsking(wayland) : XConnection().valid())
        return Done;
    return failed("the desktop's portal has to be asked");
}

} // namespace
} // namespace framora

int main(int argc, char** argv) {
    // The picture reaches the clipboard also where nobody hears any more what the tool has to say.
    std::signal(SIGPIPE, SIG_IGN);
    const auto count = static_cast<std::size_t>(argc > 0 ? argc - 1 : 0);
    const auto arguments = framora::Arguments::parse({argv + (count ? 1 : 0), count});
    if (!arguments) {
        std::fwrite(framora::Arguments::usage().data(), 1, framora::Arguments::usage().size(), stderr);
        return framora::BadUsage;
    }
    try {
        switch (arguments->task) {
        case framora::Arguments::Task::Capture:
            return framora::capture(*arguments);
        case framora::Arguments::Task::AskPermission:
            return framora::askPermission(*arguments);
        case framora::Arguments::Task::CheckRoute:
            return framora::checkRoute();
        }
    } catch (const std::bad_alloc&) {
        return framora::failed("out of memory");
    } catch (const std::exception& problem) {
        return framora::failed(problem.what());
    }
    return framora::BadUsage;
}
