#include "screencapture/portal/KwinWindowRoute.h"

#include "editor/render/raster/PngEncoder.h"
#include "screencapture/EndSignals.h"
#include "screencapture/ReadySignal.h"
#include "screencapture/portal/KwinScreenshots.h"

#include <algorithm>
#include <cmath>

namespace framora {

namespace {

bool opaque(uint32_t pixel) {
    return pixel >> 24 == 0xff;
}

/// What the opaque pixels span; empty when there are none.
Rect opaquePart(const PixelImage& picture) {
    int left = picture.width();
    int right = 0;
    int top = picture.height();
    int bottom = 0;
    for (int y = 0; y < picture.height(); ++y) {
        const uint32_t* const begin = picture.row(y);
        const uint32_t* const end = begin + picture.width();
        const uint32_t* const first = std::find_if(begin, end, opaque);
        if (first == end)
            continue;
        const uint32_t* last = end - 1;
        while (!opaque(*last))
            --last;
        left = std::min(left, static_cast<int>(first - begin));
        right = std::max(right, static_cast<int>(last - begin) + 1);
        top = std::min(top, y);
        bottom = y + 1;
    }
    return {left, top, std::max(right - left, 0), std::max(bottom - top, 0)};
}

std::vector<uint8_t> encoded(const PixelImage& image, const Rect& part, double ratio) {
    const raster::PixelView view{reinterpret_cast<const std::byte*>(image.row(part.y) + part.x), part.width,
                                 part.height, static_cast<std::ptrdiff_t>(image.strideBytes())};
    return raster::encodePng(view, raster::pixelsPerMetre(72 * ratio), raster::PngSpeed::fastest);
}

} // namespace

Rect withoutShadow(const PixelImage& picture, double frameWidth, double frameHeight) {
    const Rect part = opaquePart(picture);
    if (std::abs(part.width - frameWidth) <= 1 && std::abs(part.height - frameHeight) <= 1)
        return part;
    return {0, 0, picture.width(), picture.height()};
}

std::unique_ptr<KwinWindowRoute> KwinWindowRoute::create() {
    SessionBus bus;
    return KwinScreenshots(bus).permitted() ? std::make_unique<KwinWindowRoute>() : nullptr;
}

CaptureResult KwinWindowRoute::run(CaptureMode) {
    SessionBus bus;
    if (!bus.valid())
        return CaptureResult::notHere("there is no session bus");
    KwinScreenshots kwin(bus);
    KwinScreenshots::Picture picture;
    if (!kwin.requestPickedWindow(picture))
        return CaptureResult::notHere("KWin cannot be asked");
    // A refusal comes at once, the user's choice does not.
    constexpr std::chrono::milliseconds kRefusal{200};
    auto turn = kwin.waitForAnswer(picture, kRefusal);
    if (turn == SessionBus::Turn::TimedOut) {
        announceReady();
        turn = kwin.waitForAnswer(picture);
    }
    if (turn == SessionBus::Turn::Ended)
        return CaptureResult::cancelled();
    if (turn != SessionBus::Turn::Condition)
        return CaptureResult::failed("the session bus has gone");
    if (picture.error().is("org.kde.KWin.ScreenShot2.Error.Cancelled"))
        return CaptureResult::cancelled();
    if (!picture.error().name.empty())
        return CaptureResult::failed("KWin refuses: " + picture.error().text);
    if (!kwin.receive({&picture, 1}))
        return CaptureResult::failed("KWin's picture did not come");
    const auto image = picture.take();
    if (!image)
        return CaptureResult::failed("KWin's picture cannot be read");
    ignoreEndSignals();
    announceReady();
    const double ratio = picture.shape().scale > 0 ? picture.shape().scale : 1;
    Rect part{0, 0, image->width(), image->height()};
    if (const auto frame = kwin.frameSizeOf(picture.window()))
        part = withoutShadow(*image, frame->width * ratio, frame->height * ratio);
    auto png = encoded(*image, part, ratio);
    return png.empty() ? CaptureResult::failed("the picture is too large for the memory there is")
                       : CaptureResult::captured(std::move(png));
}

} // namespace framora
