#pragma once

#include "screencapture/CaptureMode.h"
#include "screencapture/wayland/OverlaySurface.h"

#include <memory>
#include <vector>

namespace framora {

class SeatInput;

/// The pointers of the two modes, in device pixels of each scale they are needed at.
class PointerPictures {
public:
    explicit PointerPictures(const OverlayGlobals& globals) : m_globals(globals) {}
    ~PointerPictures();
    PointerPictures(const PointerPictures&) = delete;
    PointerPictures& operator=(const PointerPictures&) = delete;

    /// Shows the mode's pointer on the surface that the seat's pointer entered last, an output of this scale.
    void show(SeatInput& seat, CaptureMode mode, double scale);

private:
    struct Picture {
        CaptureMode mode;
        double scale;
        std::unique_ptr<ShmBuffer> buffer;
        wl_surface* surface;
        wp_viewport* viewport;
        int hot; // logical
    };

    const Picture* made(CaptureMode mode, double scale);

    OverlayGlobals m_globals;
    std::vector<Picture> m_pictures;
};

} // namespace framora
