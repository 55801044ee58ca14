#include "platform/wayland/WaylandToastSurface.h"

#include "platform/ToastFade.h"

#include <cmath>
#include <utility>
#include <wayland-protocols/viewporter.h>
#include <wayland-protocols/wlr-layer-shell-unstable-v1.h>

namespace framora {

const zwlr_layer_surface_v1_listener WaylandToastSurface::layerListener{
    .configure =
        [](void* data, zwlr_layer_surface_v1* layer, std::uint32_t serial, std::uint32_t, std::uint32_t) {
            auto& self = *static_cast<WaylandToastSurface*>(data);
            zwlr_layer_surface_v1_ack_configure(layer, serial);
            if (!std::exchange(self.m_isReady, true))
                self.m_events.ready();
        },
    .closed =
        [](void* data, zwlr_layer_surface_v1*) {
            auto& self = *static_cast<WaylandToastSurface*>(data);
            self.m_isReady = false;
            // A copy: the surface goes with the call.
            const auto closed = self.m_events.closed;
            closed();
        },
};

const wl_surface_listener WaylandToastSurface::surfaceListener{
    .enter =
        [](void* data, wl_surface*, wl_output* output) {
            auto& self = *static_cast<WaylandToastSurface*>(data);
            if (const auto* known = self.m_stage.outputs().of(output))
                self.m_events.entered(*known);
        },
    .leave = [](void*, wl_surface*, wl_output*) {},
};

const wl_callback_listener WaylandToastSurface::frameListener{[](void* data, wl_callback*, std::uint32_t) {
    auto& self = *static_cast<WaylandToastSurface*>(data);
    self.dropFrame();
    self.m_events.frame();
}};

WaylandToastSurface::WaylandToastSurface(WaylandToastStage& stage, wl_output* output, const Place& place,
                                         Events events)
    : m_stage(stage), m_events(std::move(events)),
      m_surface(wl_compositor_create_surface(stage.compositor())),
      m_layer(zwlr_layer_shell_v1_get_layer_surface(stage.layerShell(), m_surface, output,
                                                    ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "framora-toast")) {
    wl_surface_add_listener(m_surface, &surfaceListener, this);
    zwlr_layer_surface_v1_add_listener(m_layer, &layerListener, this);
    if (wp_viewporter* const viewporter = stage.viewporter())
        m_viewport = wp_viewporter_get_viewport(viewporter, m_surface);
    // Panels and docks do not push it aside.
    zwlr_layer_surface_v1_set_exclusive_zone(m_layer, -1);
    zwlr_layer_surface_v1_set_keyboard_interactivity(m_layer,
                                                     ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_NONE);
    zwlr_layer_surface_v1_set_anchor(m_layer,
                                     ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT);
    applyPlace(place);
    wl_surface_commit(m_surface);
    m_stage.connection().flush();
}

WaylandToastSurface::~WaylandToastSurface() {
    dropFrame();
    if (m_viewport)
        wp_viewport_destroy(m_viewport);
    zwlr_layer_surface_v1_destroy(m_layer);
    wl_surface_destroy(m_surface);
    m_stage.connection().flush();
}

void WaylandToastSurface::applyPlace(const Place& place) {
    const QRect& frame = place.frame;
    zwlr_layer_surface_v1_set_size(m_layer, std::uint32_t(frame.width()), std::uint32_t(frame.height()));
    zwlr_layer_surface_v1_set_margin(m_layer, frame.top(), 0, 0, frame.left());
    wl_region* const region = wl_compositor_create_region(m_stage.compositor());
    for (const QRect& part : place.input)
        wl_region_add(region, part.x(), part.y(), part.width(), part.height());
    wl_surface_set_input_region(m_surface, region);
    wl_region_destroy(region);

    QSize pixels;
    if (m_viewport) {
        wp_viewport_set_destination(m_viewport, frame.width(), frame.height());
        pixels = (QSizeF(frame.size()) * place.pixelRatio).toSize().expandedTo({1, 1});
    } else {
        const int scale = int(std::ceil(place.pixelRatio));
        wl_surface_set_buffer_scale(m_surface, scale);
        pixels = frame.size() * scale;
    }
    if (!m_buffers || m_buffers->pixels() != pixels) {
        m_former = std::move(m_buffers);
        m_buffers = std::make_unique<WaylandToastBuffers>(m_stage.shm(), pixels);
    }
}

void WaylandToastSurface::setPlace(const Place& place) {
    applyPlace(place);
}

bool WaylandToastSurface::show(const QImage& picture, double alpha) {
    auto* const buffer = m_buffers->next();
    if (!buffer)
        return false;
    fadeToast(picture, buffer->image(), alpha);
    wl_surface_attach(m_surface, *buffer, 0, 0);
    wl_surface_damage_buffer(m_surface, 0, 0, picture.width(), picture.height());
    wl_surface_commit(m_surface);
    buffer->setShown();
    m_stage.connection().flush();
    return true;
}

void WaylandToastSurface::requestFrame() {
    if (m_frame)
        return;
    m_frame = wl_surface_frame(m_surface);
    wl_callback_add_listener(m_frame, &frameListener, this);
}

void WaylandToastSurface::dropFrame() {
    if (m_frame)
        wl_callback_destroy(std::exchange(m_frame, nullptr));
}

} // namespace framora
