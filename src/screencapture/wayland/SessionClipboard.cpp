#include "screencapture/wayland/SessionClipboard.h"

#include "screencapture/ClipboardServer.h"
#include "screencapture/DetachedClipboard.h"
#include "screencapture/PictureHandover.h"
#include "screencapture/wayland/DataControlClipboard.h"
#include "screencapture/wayland/WaylandConnection.h"

#include <cstdlib>

namespace framora {

namespace {

std::unique_ptr<ClipboardOwner> makeDataControl(std::vector<uint8_t> png) {
    return std::make_unique<DataControlClipboard>(std::move(png));
}

bool set(const char* variable) {
    const char* value = std::getenv(variable);
    return value && *value;
}

} // namespace

bool leaveOnXClipboard(std::vector<uint8_t> png, const std::function<void()>& letGo) {
    return leaveOnClipboard(
        std::move(png),
        [](std::vector<uint8_t> picture) {
            return std::make_unique<ClipboardServer>(xcb_connect(nullptr, nullptr), std::move(picture));
        },
        letGo);
}

bool leaveOnSessionClipboard(std::vector<uint8_t> png) {
    // A compositor may offer it and refuse it all the same.
    if (set("WAYLAND_DISPLAY") && DataControlClipboard::offeredBy(WaylandConnection()) &&
        leaveOnClipboard(png, makeDataControl))
        return true;
    if (set("DISPLAY") && leaveOnXClipboard(png))
        return true;
    return handToProgram(png);
}

} // namespace framora
