#include "screencapture/wayland/PointerPictures.h"

#include "screencapture/CursorDrawing.h"
#include "screencapture/wayland/SeatInput.h"

#include <cmath>
#include <wayland-client-protocol.h>
#include <wayland-protocols/viewporter.h>

namespace framora {

namespace {

/// The least whole number of logical pixels that reaches `pixels` and ends on a whole pixel itself, so that
/// nothing blurs; when there is none near, one that just reaches it.
int wholeLogical(int pixels, double scale) {
    constexpr int kSearch = 24;
    const int least = static_cast<int>(std::ceil(pixels / scale - 1e-6));
    for (int i = 0; i < kSearch; ++i) {
        const double reached = (least + i) * scale;
        if (std::abs(reached - std::round(reached)) < 1e-6)
            return least + i;
    }
    return least;
}

} // namespace

PointerPictures::~PointerPictures() {
    for (const Picture& picture : m_pictures) {
        if (picture.viewport)
            wp_viewport_destroy(picture.viewport);
        wl_surface_destroy(picture.surface);
    }
}

const PointerPictures::Picture* PointerPictures::made(CaptureMode mode, double scale) {
    for (const Picture& picture : m_pictures)
        if (picture.mode == mode && picture.scale == scale)
            return &picture;
    const double ratio = m_globals.viewporter ? scale : std::max(1.0, std::round(scale));
    const CursorDrawing drawing(mode, ratio);
    const int hot = wholeLogical(drawing.middle(), ratio);
    const int offset = static_cast<int>(std::lround(hot * ratio)) - drawing.middle();
    const int logicalSide = wholeLogical(offset + drawing.side(), ratio);
    const int side = static_cast<int>(std::lround(logicalSide * ratio));
    auto image = MemoryImage::createShared(side, side);
    if (!image)
        return nullptr;
    cairo_surface_t* canvas = cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(image->row(0)), CAIRO_FORMAT_ARGB32, side, side, side * 4);
    cairo_t* cr = cairo_create(canvas);
    cairo_translate(cr, offset, offset);
    drawing.draw(cr);
    cairo_destroy(cr);
    cairo_surface_destroy(canvas);

    auto buffer = std::make_unique<ShmBuffer>(m_globals.shm, std::move(image), WL_SHM_FORMAT_ARGB8888);
    wl_surface* surface = wl_compositor_create_surface(m_globals.compositor);
    wp_viewport* viewport = nullptr;
    if (m_globals.viewporter) {
        viewport = wp_viewporter_get_viewport(m_globals.viewporter, surface);
        wp_viewport_set_destination(viewport, logicalSide, logicalSide);
    } else {
        wl_surface_set_buffer_scale(surface, static_cast<int>(ratio));
    }
    wl_surface_attach(surface, *buffer, 0, 0);
    wl_surface_damage(surface, 0, 0, logicalSide, logicalSide);
    wl_surface_commit(surface);
    m_pictures.push_back({mode, scale, std::move(buffer), surface, viewport, hot});
    return &m_pictures.back();
}

void PointerPictures::show(SeatInput& seat, CaptureMode mode, double scale) {
    if (const Picture* picture = made(mode, scale))
        seat.setCursor(picture->surface, picture->hot, picture->hot);
}

} // namespace framora
