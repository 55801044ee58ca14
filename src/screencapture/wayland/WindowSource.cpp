#include "screencapture/wayland/WindowSource.h"

#include "screencapture/wayland/HyprlandWindows.h"
#include "screencapture/wayland/SwayWindows.h"

namespace framora {

std::unique_ptr<WindowSource> WindowSource::ofSession() {
    std::unique_ptr<WindowSource> source = std::make_unique<SwayWindows>();
    if (!source->available())
        source = std::make_unique<HyprlandWindows>();
    return source->available() ? std::move(source) : nullptr;
}

} // namespace framora
