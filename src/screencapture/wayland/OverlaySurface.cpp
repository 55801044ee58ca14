#include "screencapture/wayland/OverlaySurface.h"

#include "screencapture/LabelPlacement.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <wayland-client-protocol.h>
#include <wayland-protocols/viewporter.h>
#include <wayland-protocols/wlr-layer-shell-unstable-v1.h>

namespace framora {

OverlaySurface::OverlaySurface(const OverlayGlobals& globals, const Output& output)
    : m_globals(globals), m_output(output), m_surface(wl_compositor_create_surface(globals.compositor)),
      m_layer(zwlr_layer_shell_v1_get_layer_surface(globals.layerShell, m_surface, output.handle,
                                                    ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY,
                                                    "framora-screencapture")) {
    static const zwlr_layer_surface_v1_listener listener{
        .configure =
            [](void* data, zwlr_layer_surface_v1* layer, uint32_t serial, uint32_t width, uint32_t height) {
                zwlr_layer_surface_v1_ack_configure(layer, serial);
                static_cast<OverlaySurface*>(data)->configure(static_cast<int>(width),
                                                              static_cast<int>(height));
            },
        .closed = [](void* data,
                     zwlr_layer_surface_v1*) { static_cast<OverlaySurface*>(data)->m_lost = true; },
    };
    zwlr_layer_surface_v1_add_listener(m_layer, &listener, this);
    zwlr_layer_surface_v1_set_anchor(
        m_layer, ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
                     ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT);
    // Over panels too, not beside them.
    zwlr_layer_surface_v1_set_exclusive_zone(m_layer, -1);
    zwlr_layer_surface_v1_set_keyboard_interactivity(m_layer,
                                                     ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_EXCLUSIVE);
    wl_surface_commit(m_surface);
}

OverlaySurface::~OverlaySurface() {
    if (m_frameCallback)
        wl_callback_destroy(m_frameCallback);
    if (m_viewport)
        wp_viewport_destroy(m_viewport);
    zwlr_layer_surface_v1_destroy(m_layer);
    wl_surface_destroy(m_surface);
}

void OverlaySurface::configure(int width, int height) {
    if (m_shownOnce && (width != m_width || height != m_height))
        m_lost = true;
    m_width = width > 0 ? width : m_output.logical.width;
    m_height = height > 0 ? height : m_output.logical.height;
}

void OverlaySurface::adopt(std::unique_ptr<MemoryImage> memory) {
    m_frames[0].buffer =
        std::make_unique<ShmBuffer>(m_globals.shm, std::move(memory), WL_SHM_FORMAT_XRGB8888);
}

void OverlaySurface::show(const PixelImage& frozen, const Rect& screen) {
    if (m_globals.viewporter) {
        m_viewport = wp_viewporter_get_viewport(m_globals.viewporter, m_surface);
        // Pixels that the surface does not reach, because a logical size is whole, are left out: squeezed in,
        // all the others would blur.
        const auto reached = [this](int logical, int pixels) {
            return std::clamp(static_cast<int>(std::lround(logical * m_output.scale)), 1, pixels);
        };
        wp_viewport_set_source(m_viewport, 0, 0, wl_fixed_from_int(reached(m_width, m_output.pixelWidth)),
                               wl_fixed_from_int(reached(m_height, m_output.pixelHeight)));
        wp_viewport_set_destination(m_viewport, m_width, m_height);
    } else {
        wl_surface_set_buffer_scale(m_surface, static_cast<int>(std::lround(m_output.scale)));
    }
    wl_region* all = wl_compositor_create_region(m_globals.compositor);
    wl_region_add(all, 0, 0, m_width, m_height);
    wl_surface_set_opaque_region(m_surface, all);
    wl_region_destroy(all);
    for (Frame& frame : m_frames) {
        if (!frame.buffer) {
            auto image = MemoryImage::createShared(m_output.pixelWidth, m_output.pixelHeight);
            if (!image)
                continue; // one frame is slower, not wrong
            frame.buffer =
                std::make_unique<ShmBuffer>(m_globals.shm, std::move(image), WL_SHM_FORMAT_XRGB8888);
        }
        frame.painter =
            std::make_unique<OverlayPainter>(frozen, frame.buffer->image(), m_output.scale, screen);
    }
    m_shownOnce = true;
    paintWhole(m_frames[0]);
    commit(m_frames[0], {{0, 0, m_output.pixelWidth, m_output.pixelHeight}});
}

void OverlaySurface::paintWhole(Frame& frame) {
    Frame& other = &frame == &m_frames[0] ? m_frames[1] : m_frames[0];
    PixelImage& image = frame.buffer->image();
    if (other.painted) {
        std::memcpy(image.row(0), other.buffer->image().row(0),
                    image.strideBytes() * static_cast<std::size_t>(image.height()));
        frame.scene = other.scene;
    } else {
        frame.scene = {};
        frame.painter->paint({}, {0, 0, image.width(), image.height()});
    }
    frame.painted = true;
}

OverlaySurface::Frame* OverlaySurface::freeFrame() {
    for (Frame& frame : m_frames)
        if (frame.painter && !frame.buffer->held())
            return &frame;
    return nullptr;
}

void OverlaySurface::flush() {
    if (!m_shownOnce || m_frameCallback || m_wanted == m_shown)
        return;
    Frame* frame = freeFrame();
    if (!frame)
        return;
    if (!frame->painted)
        paintWhole(*frame);
    for (const Rect& part : frame->painter->difference(frame->scene, m_wanted))
        frame->painter->paint(m_wanted, part);
    frame->scene = m_wanted;
    const auto changed = frame->painter->difference(m_shown, m_wanted);
    m_shown = m_wanted;
    // What differs only beyond this output is no frame.
    if (!changed.empty())
        commit(*frame, changed);
}

void OverlaySurface::commit(Frame& frame, const std::vector<Rect>& parts) {
    static const wl_callback_listener listener{.done = [](void* data, wl_callback* callback, uint32_t) {
        wl_callback_destroy(callback);
        static_cast<OverlaySurface*>(data)->m_frameCallback = nullptr;
    }};
    wl_surface_attach(m_surface, *frame.buffer, 0, 0);
    // Told in logical pixels, outwards: of what is told in the buffer's, some compositors lose a part at
    // scales between whole ones.
    const double scale = m_globals.viewporter ? m_output.scale : std::round(m_output.scale);
    const auto down = [scale](int pixel) { return static_cast<int>(std::floor(pixel / scale)); };
    const auto up = [scale](int pixel) { return static_cast<int>(std::ceil(pixel / scale)); };
    for (const Rect& part : parts) {
        const Point from{down(part.x), down(part.y)};
        wl_surface_damage(m_surface, from.x, from.y, up(part.right()) - from.x, up(part.bottom()) - from.y);
    }
    m_frameCallback = wl_surface_frame(m_surface);
    wl_callback_add_listener(m_frameCallback, &listener, this);
    frame.buffer->setHeld();
    wl_surface_commit(m_surface);
}

bool OverlaySurface::warmUp() {
    for (Frame& frame : m_frames) {
        if (!frame.painter)
            continue;
        if (!frame.painted) {
            paintWhole(frame);
            return true;
        }
        if (!frame.painter->label().prepared()) {
            frame.painter->label().prepare();
            return true;
        }
    }
    return false;
}

OverlayScene::Label OverlaySurface::labelFor(const Rect& selection, Point corner, int width, int height) {
    constexpr double kGap = 14; // logical pixels: clears the arms of the crosshair
    if (!m_frames[0].painter)
        return {};
    const Rect size = m_frames[0].painter->label().measured(width, height);
    const Rect box = placeLabel(selection, corner, size.width, size.height,
                                static_cast<int>(std::lround(kGap * m_output.scale)),
                                {0, 0, m_output.pixelWidth, m_output.pixelHeight});
    return {box, width, height};
}

} // namespace framora
