#include "screencapture/portal/PortalRoute.h"

#include "editor/render/raster/PngEncoder.h"
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

/// What the portal's file holds; the file is gone then.
CaptureResult take(const std::string& uri) {
    const auto path = pathOfFileUri(uri);
    if (!path)
        return CaptureResult::failed("the desktop's picture is no file of this machine");
    HandedFile file = HandedFile::take(*path);
    return file.failure.empty() ? CaptureResult::captured(std::move(file.bytes))
                                : CaptureResult::failed(std::move(file.failure));
}

/// Runs one request to its end.
CaptureResult ask(const ScreenshotPortal::Request& request) {
    SessionBus bus;
    const auto answer = ScreenshotPortal(bus).ask(request, announceReady);
    switch (answer.kind) {
    case ScreenshotPortal::Answer::Kind::Picture:
        return take(answer.uri);
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
    CaptureResult result = ask({true, mode, m_options.parentWindow, activationToken()});
    if (result.outcome != CaptureResult::Outcome::Captured)
        return result;
    const auto size = pngSizeOf(result.png);
    if (!size)
        return CaptureResult::failed("the desktop's picture is no PNG file, or damaged");
    announceReady(); // For a desktop that needed no time to ask.
    if (const double ratio = ratioOfPicture(size->width, size->height, m_options.outputs); ratio > 0)
        result.png = pngWithResolution(std::move(result.png), raster::pixelsPerMetre(72 * ratio));
    return result;
}

CaptureResult PortalRoute::askPermission() {
    CaptureResult result = ask({false, CaptureMode::Area, m_options.parentWindow, activationToken()});
    result.png.clear();
    return result;
}

} // namespace framora
