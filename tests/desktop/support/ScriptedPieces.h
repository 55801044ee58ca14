#pragma once

#include "desktop/support/CompositorScript.h"

#include <QImage>
#include <QPointF>

#include <algorithm>
#include <memory>
#include <wayland-server-core.h>

namespace framora {

class ScriptedOutputs;
class ScriptedSurfaces;
class ScriptedSeat;
class ScriptedCopies;
class ScriptedClipboard;

/// What the parts of a ScriptedCompositor know of each other. Everything runs on its thread.
struct ScriptedPieces {
    wl_display* display = nullptr;
    CompositorScript script;
    std::unique_ptr<ScriptedOutputs> outputs;
    std::unique_ptr<ScriptedSurfaces> surfaces;
    std::unique_ptr<ScriptedSeat> seat;
    std::unique_ptr<ScriptedCopies> copies;
    std::unique_ptr<ScriptedClipboard> clipboard;
};

/// The object behind a client's resource.
template <class T> T& behind(wl_resource* resource) {
    return *static_cast<T*>(wl_resource_get_user_data(resource));
}

/// A resource that belongs to `owner`, or to nobody. `gone` runs when the client or the compositor ends it.
inline wl_resource* makeResource(wl_client* client, const wl_interface& interface, int version,
                                 std::uint32_t id, const void* requests, void* owner,
                                 wl_resource_destroy_func_t gone = nullptr) {
    wl_resource* const resource = wl_resource_create(client, &interface, version, id);
    wl_resource_set_implementation(resource, requests, owner, gone);
    return resource;
}

inline void destroyResource(wl_client*, wl_resource* resource) {
    wl_resource_destroy(resource);
}

/// Offers a global whose bindings make a resource with these requests and the owner behind it. `made` sees
/// it. Nothing with version 0.
template <class Owner>
wl_global* offerGlobal(wl_display* display, const wl_interface& interface, int version, Owner* owner,
                       wl_global_bind_func_t bind) {
    return version > 0 ? wl_global_create(display, &interface, version, owner, bind) : nullptr;
}

} // namespace framora
