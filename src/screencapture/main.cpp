#include "editor/render/raster/PngEncoder.h"
#include "screencapture/Arguments.h"
#include "screencapture/CaptureSession.h"
#include "screencapture/DetachedClipboard.h"
#include "screencapture/SingleInstance.h"
#include "screencapture/XConnection.h"

#include <cstdio>
#include <new>

namespace framora {
namespace {

enum ExitCode { Done = 0, Cancelled = 1, BadUsage = 2, Failed = 3 };

int failed(const std::string& why) {
    std::fprintf(stderr, "framora-screencapture: %s\n", why.c_str());
    return Failed;
}

int capture(CaptureMode mode) {
    const XConnection connection;
    if (!connection.valid())
        return failed("no X display can be opened");
    if (!claimSingleInstance(connection))
        return failed("a capture is already open");
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
    auto png =
        raster::encodePng(view, raster::pixelsPerMetre(72 * session.pixelRatio()), raster::PngSpeed::fastest);
    if (png.empty())
        return failed("the picture is too large for the memory there is");
    if (!leaveOnClipboard(std::move(png), picture))
        return failed("the clipboard cannot be taken");
    return Done;
}

} // namespace
} // namespace framora

int main(int argc, char** argv) {
    const auto count = static_cast<std::size_t>(argc > 0 ? argc - 1 : 0);
    const auto arguments = framora::Arguments::parse({argv + (count ? 1 : 0), count});
    if (!arguments) {
        std::fwrite(framora::Arguments::usage().data(), 1, framora::Arguments::usage().size(), stderr);
        return framora::BadUsage;
    }
    try {
        return framora::capture(arguments->mode);
    } catch (const std::bad_alloc&) {
        return framora::failed("out of memory");
    }
}
