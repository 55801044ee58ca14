#include "screencapture/portal/PortalRoute.h"

#include "editor/render/raster/PngEncoder.h"
#include "screencapture/EndSignals.h"
#include "screencapture/ReadySignal.h"
#include "screencapture/portal/HandedFile.h"
#include "screencapture/portal/PictureRatio.h"
#include "screencapture/portal/PngFile.h"
#include "screencapture/portal/ScreenshotPortal.h"

#include <cstdlib>

namespace framora {

namespace {

std::string activationToken() {
    const char* token = std::getenv("XDG_ACTIVATION_TOKEN");
    return token ? token : "";
}

/// The answer to one request; a picture's file is told by `uri`, and the result has none yet.
CaptureResult ask(const ScreenshotPortal::Request& request, std::string& uri) {
    SessionBus bus;
    auto answer = ScreenshotPortal(bus).ask(request, announceReady);
    switch (answer.kind) {
    case ScreenshotPortal::Answer::Kind::Picture:
        uri = std::move(answer.uri);
        return CaptureResult::captured({});
    case ScreenshotPortal::Answer::Kind::Cancelled:
        return CaptureResult::cancelled();
    case ScreenshotPortal::Answer::Kind::NotHere:
        return CaptureResult::notHere(answer.why);
    case ScreenshotPortal::Answer::Kind::Denied:
    case ScreenshotPortal::Answer::Kind::Failed:
        break;
    }
    return CaptureResult::failed(answer.why);
}

} // namespace

CaptureResult PortalRoute::run(CaptureMode mode) {
    std::string uri;
    CaptureResult result = ask({true, mode, m_options.parentWindow, activationToken()}, uri);
    if (result.outcome != CaptureResult::Outcome::Captured)
        return result;
    ignoreEndSignals();
    const auto path = pathOfFileUri(uri);
    if (!path)
        return CaptureResult::failed("the desktop's picture is no file of this machine");
    HandedFile file(*path);
    if (!file.failure().empty())
        return CaptureResult::failed(file.failure());
    const auto size = pngSizeOf(file.bytes());
    if (!size)
        return CaptureResult::failed("the desktop's picture is no PNG file, or damaged: " + *path);
    announceReady(); // For a desktop that needed no time to ask.
    result.png = file.takeBytes();
    if (const double ratio = ratioOfPicture(size->width, size->height, m_options.outputs); ratio > 0)
        result.png = pngWithResolution(std::move(result.png), raster::pixelsPerMetre(72 * ratio));
    result.whenSafe = [file = std::move(file)] { file.remove(); };
    return result;
}

CaptureResult PortalRoute::askPermission() {
    std::string uri;
    CaptureResult result = ask({false, CaptureMode::Area, m_options.parentWindow, activationToken()}, uri);
    // A picture that nobody asked for.
    if (const auto path = pathOfFileUri(uri); path)
        HandedFile::removeUnread(*path);
    return result;
}

} // namespace framora
