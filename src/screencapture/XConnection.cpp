#include "screencapture/XConnection.h"

#include <array>
#include <xcb/composite.h>
#include <xcb/damage.h>
#include <xcb/randr.h>
#include <xcb/render.h>
#include <xcb/shape.h>
#include <xcb/shm.h>
#include <xcb/xfixes.h>

namespace framora {

XConnection::XConnection() {
    int screenNumber = 0;
    m_connection = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(m_connection))
        return;
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection));
    for (int i = 0; i < screenNumber && screens.rem > 1; ++i)
        xcb_screen_next(&screens);
    if (!screens.rem)
        return;
    m_screen = screens.data;
    for (xcb_extension_t* extension : {&xcb_composite_id, &xcb_damage_id, &xcb_xfixes_id, &xcb_randr_id,
                                       &xcb_shape_id, &xcb_shm_id, &xcb_render_id})
        xcb_prefetch_extension_data(m_connection, extension);
    internAtoms();
    askVersions();
}

XConnection::~XConnection() {
    xcb_disconnect(m_connection);
}

void XConnection::internAtoms() {
    struct Entry {
        std::string_view name;
        xcb_atom_t* atom;
    };
    const std::array entries{
        Entry{"_FRAMORA_SCREENCAPTURE", &m_atoms.instance},
        Entry{"WM_STATE", &m_atoms.wmState},
        Entry{"_NET_WM_WINDOW_TYPE", &m_atoms.windowType},
        Entry{"_NET_WM_WINDOW_TYPE_DESKTOP", &m_atoms.windowTypeDesktop},
        Entry{"_GTK_FRAME_EXTENTS", &m_atoms.frameExtents},
        Entry{"_NET_WM_BYPASS_COMPOSITOR", &m_atoms.bypassCompositor},
    };
    std::array<xcb_intern_atom_cookie_t, entries.size()> cookies;
    for (std::size_t i = 0; i < entries.size(); ++i)
        cookies[i] = xcb_intern_atom(m_connection, 0, static_cast<uint16_t>(entries[i].name.size()),
                                     entries[i].name.data());
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (const auto r = reply(cookies[i], xcb_intern_atom_reply))
            *entries[i].atom = r->atom;
}

void XConnection::askVersions() {
    const auto present = [this](xcb_extension_t* extension) {
        const auto* data = xcb_get_extension_data(m_connection, extension);
        return data && data->present;
    };
    // A server answers an extension's requests only after it was told which version the client speaks.
    const bool composite = present(&xcb_composite_id);
    const bool fixes = present(&xcb_xfixes_id);
    const bool damage = present(&xcb_damage_id);
    const bool randr = present(&xcb_randr_id);
    const bool shm = present(&xcb_shm_id);
    m_hasShape = present(&xcb_shape_id);
    m_hasRender = present(&xcb_render_id);
    xcb_composite_query_version_cookie_t compositeCookie{};
    xcb_xfixes_query_version_cookie_t fixesCookie{};
    xcb_damage_query_version_cookie_t damageCookie{};
    xcb_randr_query_version_cookie_t randrCookie{};
    xcb_shm_query_version_cookie_t shmCookie{};
    if (composite)
        compositeCookie = xcb_composite_query_version(m_connection, 0, 4);
    if (fixes)
        fixesCookie = xcb_xfixes_query_version(m_connection, 5, 0);
    if (damage)
        damageCookie = xcb_damage_query_version(m_connection, 1, 1);
    if (randr)
        randrCookie = xcb_randr_query_version(m_connection, 1, 5);
    if (shm)
        shmCookie = xcb_shm_query_version(m_connection);
    if (composite) {
        const auto r = reply(compositeCookie, xcb_composite_query_version_reply);
        m_hasComposite = r && (r->major_version > 0 || r->minor_version >= 2);
    }
    const auto fixesReply = fixes ? reply(fixesCookie, xcb_xfixes_query_version_reply) : nullptr;
    if (damage)
        m_hasDamage = reply(damageCookie, xcb_damage_query_version_reply) && fixesReply;
    if (randr) {
        const auto r = reply(randrCookie, xcb_randr_query_version_reply);
        m_hasRandr = r && (r->major_version > 1 || (r->major_version == 1 && r->minor_version >= 5));
    }
    if (shm)
        m_hasSharedMemory = reply(shmCookie, xcb_shm_query_version_reply) != nullptr;
}

const xcb_visualtype_t* XConnection::visual(xcb_visualid_t id) const {
    for (auto depths = xcb_screen_allowed_depths_iterator(m_screen); depths.rem; xcb_depth_next(&depths))
        for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem;
             xcb_visualtype_next(&visuals))
            if (visuals.data->visual_id == id)
                return visuals.data;
    return nullptr;
}

const xcb_format_t* XConnection::format(int depth) const {
    auto formats = xcb_setup_pixmap_formats_iterator(xcb_get_setup(m_connection));
    for (; formats.rem; xcb_format_next(&formats))
        if (formats.data->depth == depth)
            return formats.data;
    return nullptr;
}

std::string XConnection::stringProperty(xcb_window_t window, xcb_atom_t property) const {
    constexpr uint32_t kMostWords = 1 << 18;
    const auto r =
        reply(xcb_get_property(m_connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, kMostWords),
              xcb_get_property_reply);
    if (!r || r->format != 8)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(r.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(r.get()))};
}

bool XConnection::selectionOwned(xcb_atom_t selection) const {
    const auto r = reply(xcb_get_selection_owner(m_connection, selection), xcb_get_selection_owner_reply);
    return r && r->owner != XCB_WINDOW_NONE;
}

bool XConnection::succeeded(xcb_void_cookie_t cookie) const {
    const XReply<xcb_generic_error_t> error(xcb_request_check(m_connection, cookie));
    return !error && !xcb_connection_has_error(m_connection);
}

} // namespace framora
