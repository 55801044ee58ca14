#include "desktop/support/ScriptedSurfaces.h"

#include "desktop/support/ScriptedSeat.h"

#include <utility>
#include <wayland-server-protocol.h>
#include <wayland-server-protocols/viewporter.h>
#include <wayland-server-protocols/wlr-layer-shell-unstable-v1.h>

namespace framora {

namespace {

using Surface = ScriptedSurfaces::Surface;

void ignoreFour(wl_client*, wl_resource*, std::int32_t, std::int32_t, std::int32_t, std::int32_t) {}
void ignoreFlag(wl_client*, wl_resource*, std::uint32_t) {}
void ignorePair(wl_client*, wl_resource*, std::uint32_t, std::uint32_t) {}
void ignoreObject(wl_client*, wl_resource*, wl_resource*) {}

constexpr struct wl_region_interface regionRequests {
    .destroy = destroyResource, .add = ignoreFour, .subtract = ignoreFour
};

constexpr struct zwlr_layer_surface_v1_interface layerRequests {
    .set_size = ignorePair, .set_anchor = ignoreFlag,
    .set_exclusive_zone = [](wl_client*, wl_resource*, std::int32_t) {}, .set_margin = ignoreFour,
    .set_keyboard_interactivity =
        [](wl_client*, wl_resource* layer, std::uint32_t interactivity) {
            if (wl_resource_get_user_data(layer))
                behind<Surface>(layer).wantsKeyboard = interactivity != 0;
        },
    .get_popup = ignoreObject,
    .ack_configure =
        [](wl_client*, wl_resource* layer, std::uint32_t) {
            if (wl_resource_get_user_data(layer))
                behind<Surface>(layer).configured = true;
        },
    .destroy = destroyResource, .set_layer = ignoreFlag,
};

} // namespace

ScriptedSurfaces::ScriptedSurfaces(ScriptedPieces& pieces) : m_pieces(pieces) {
    wl_display_init_shm(pieces.display);
    offerGlobal(pieces.display, wl_compositor_interface, pieces.script.compositor, &pieces, bindCompositor);
    offerGlobal(pieces.display, zwlr_layer_shell_v1_interface, pieces.script.layerShell, &pieces,
                bindLayerShell);
    offerGlobal(pieces.display, wp_viewporter_interface, pieces.script.viewporter, &pieces, bindViewporter);
}

ScriptedSurfaces::~ScriptedSurfaces() = default;

std::vector<Surface*> ScriptedSurfaces::layers() const {
    std::vector<Surface*> result;
    for (const auto& surface : m_surfaces)
        if (surface->layer)
            result.push_back(surface.get());
    return result;
}

Surface* ScriptedSurfaces::layerOn(const QString& output) const {
    for (const auto& surface : m_surfaces)
        if (surface->layer && surface->output && surface->output->told.name == output)
            return surface.get();
    return nullptr;
}

void ScriptedSurfaces::close(const QString& output) {
    for (Surface* surface : layers())
        if (surface->output && surface->output->told.name == output)
            zwlr_layer_surface_v1_send_closed(surface->layer);
}

void ScriptedSurfaces::configure(Surface& surface, QSize size) {
    zwlr_layer_surface_v1_send_configure(surface.layer, wl_display_next_serial(m_pieces.display),
                                         std::uint32_t(size.width()), std::uint32_t(size.height()));
}

void ScriptedSurfaces::bindCompositor(wl_client* client, void* data, std::uint32_t version,
                                      std::uint32_t id) {
    static constexpr struct wl_compositor_interface requests {
        .create_surface =
            [](wl_client* asking, wl_resource* compositor, std::uint32_t surface) {
                behind<ScriptedPieces>(compositor)
                    .surfaces->create(asking, surface, wl_resource_get_version(compositor));
            },
        .create_region = [](wl_client* asking, wl_resource* compositor, std::uint32_t region) {
            makeResource(asking, wl_region_interface, wl_resource_get_version(compositor), region,
                         &regionRequests, nullptr);
        },
    };
    makeResource(client, wl_compositor_interface, int(version), id, &requests, data);
}

void ScriptedSurfaces::create(wl_client* client, std::uint32_t id, int version) {
    static constexpr struct wl_surface_interface requests {
        .destroy = destroyResource,
        .attach =
            [](wl_client*, wl_resource* surface, wl_resource* buffer, std::int32_t, std::int32_t) {
                behind<Surface>(surface).pending = buffer;
                behind<Surface>(surface).attached = true;
            },
        .damage = ignoreFour,
        .frame =
            [](wl_client* asking, wl_resource* surface, std::uint32_t callback) {
                wl_resource* const frame =
                    makeResource(asking, wl_callback_interface, 1, callback, nullptr,
                                 &behind<Surface>(surface), [](wl_resource* gone) {
                                     if (wl_resource_get_user_data(gone))
                                         std::erase(behind<Surface>(gone).frames, gone);
                                 });
                behind<Surface>(surface).frames.push_back(frame);
            },
        .set_opaque_region = ignoreObject, .set_input_region = ignoreObject,
        .commit =
            [](wl_client*, wl_resource* surface) {
                auto& committed = behind<Surface>(surface);
                committed.pieces->surfaces->commit(committed);
            },
        .set_buffer_transform = [](wl_client*, wl_resource*, std::int32_t) {},
        .set_buffer_scale = [](wl_client*, wl_resource*, std::int32_t) {}, .damage_buffer = ignoreFour,
        .offset = [](wl_client*, wl_resource*, std::int32_t, std::int32_t) {},
    };
    auto surface = std::make_unique<Surface>();
    surface->pieces = &m_pieces;
    surface->resource = makeResource(
        client, wl_surface_interface, version, id, &requests, surface.get(), [](wl_resource* resource) {
            auto& gone = behind<Surface>(resource);
            gone.pieces->seat->forget(gone);
            for (wl_resource* frame : std::exchange(gone.frames, {}))
                wl_resource_set_user_data(frame, nullptr);
            if (gone.layer)
                wl_resource_set_user_data(gone.layer, nullptr);
            std::erase_if(gone.pieces->surfaces->m_surfaces, [&](const auto& s) { return s.get() == &gone; });
        });
    m_surfaces.push_back(std::move(surface));
}

void ScriptedSurfaces::commit(Surface& surface) {
    const CompositorScript& script = m_pieces.script;
    if (surface.layer && !surface.attached && !surface.configured) {
        if (script.closeSurfaces)
            zwlr_layer_surface_v1_send_closed(surface.layer);
        else if (script.configure)
            configure(surface, script.configure->isValid() || !surface.output
                                   ? *script.configure
                                   : surface.output->logicalSize());
        return;
    }
    if (std::exchange(surface.attached, false))
        takePicture(surface);
    for (wl_resource* frame : std::exchange(surface.frames, {})) {
        wl_resource_set_user_data(frame, nullptr);
        wl_callback_send_done(frame, 0);
        wl_resource_destroy(frame);
    }
    if (surface.layer && surface.wantsKeyboard && !surface.shown.isNull())
        m_pieces.seat->keyboardTo(surface);
}

void ScriptedSurfaces::takePicture(Surface& surface) {
    wl_resource* const buffer = std::exchange(surface.pending, nullptr);
    surface.shown = QImage();
    wl_shm_buffer* const memory = buffer ? wl_shm_buffer_get(buffer) : nullptr;
    if (!memory)
        return;
    wl_shm_buffer_begin_access(memory);
    surface.shown =
        QImage(static_cast<const uchar*>(wl_shm_buffer_get_data(memory)), wl_shm_buffer_get_width(memory),
               wl_shm_buffer_get_height(memory), wl_shm_buffer_get_stride(memory), QImage::Format_RGB32)
            .copy();
    wl_shm_buffer_end_access(memory);
    wl_buffer_send_release(buffer);
}

void ScriptedSurfaces::bindLayerShell(wl_client* client, void* data, std::uint32_t version,
                                      std::uint32_t id) {
    static constexpr struct zwlr_layer_shell_v1_interface requests {
        .get_layer_surface =
            [](wl_client* asking, wl_resource* shell, std::uint32_t layerId, wl_resource* surfaceResource,
               wl_resource* output, std::uint32_t, const char* scope) {
                auto& pieces = behind<ScriptedPieces>(shell);
                auto& surface = behind<Surface>(surfaceResource);
                surface.output = output ? &behind<ScriptedOutputs::Monitor>(output) : pieces.outputs->first();
                surface.scope = QString::fromUtf8(scope);
                surface.layer =
                    makeResource(asking, zwlr_layer_surface_v1_interface, wl_resource_get_version(shell),
                                 layerId, &layerRequests, &surface, [](wl_resource* gone) {
                                     if (!wl_resource_get_user_data(gone))
                                         return;
                                     behind<Surface>(gone).layer = nullptr;
                                     behind<Surface>(gone).shown = QImage();
                                 });
                if (surface.output && surface.output->gone)
                    zwlr_layer_surface_v1_send_closed(surface.layer);
            },
        .destroy = destroyResource,
    };
    makeResource(client, zwlr_layer_shell_v1_interface, int(version), id, &requests, data);
}

void ScriptedSurfaces::bindViewporter(wl_client* client, void* data, std::uint32_t version,
                                      std::uint32_t id) {
    static constexpr struct wp_viewport_interface viewportRequests {
        .destroy = destroyResource,
        .set_source =
            [](wl_client*, wl_resource* viewport, wl_fixed_t, wl_fixed_t, wl_fixed_t width,
               wl_fixed_t height) {
                if (width <= 0 || height <= 0)
                    wl_resource_post_error(viewport, WP_VIEWPORT_ERROR_BAD_VALUE, "no such source");
            },
        .set_destination = [](wl_client*, wl_resource* viewport, std::int32_t width, std::int32_t height) {
            if (width <= 0 || height <= 0)
                wl_resource_post_error(viewport, WP_VIEWPORT_ERROR_BAD_VALUE, "no such size");
        },
    };
    static constexpr struct wp_viewporter_interface requests {
        .destroy = destroyResource,
        .get_viewport = [](wl_client* asking, wl_resource* viewporter, std::uint32_t viewport, wl_resource*) {
            makeResource(asking, wp_viewport_interface, wl_resource_get_version(viewporter), viewport,
                         &viewportRequests, nullptr);
        },
    };
    makeResource(client, wp_viewporter_interface, int(version), id, &requests, data);
}

} // namespace framora
