#pragma once

#include "screencapture/Geometry.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>
#include <xcb/xcb.h>

namespace framora {

struct FreeDeleter {
    void operator()(void* p) const { std::free(p); }
};

/// A reply or an event, which libxcb hands over as malloc'ed memory.
template <typename T> using XReply = std::unique_ptr<T, FreeDeleter>;

/// One connection to the X server, the screen it was opened for, and the extensions that are there.
class XConnection {
public:
    /// The atoms the tool needs; all are asked for in one go.
    struct Atoms {
        xcb_atom_t instance = XCB_ATOM_NONE; // _FRAMORA_SCREENCAPTURE
        xcb_atom_t wmState = XCB_ATOM_NONE;
        xcb_atom_t windowType = XCB_ATOM_NONE;
        xcb_atom_t windowTypeDesktop = XCB_ATOM_NONE;
        xcb_atom_t frameExtents = XCB_ATOM_NONE; // _GTK_FRAME_EXTENTS
        xcb_atom_t bypassCompositor = XCB_ATOM_NONE;
    };

    /// Connects to $DISPLAY. `valid()` tells whether that worked.
    XConnection();
    ~XConnection();
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;

    /// False when there is no server, or from the moment it is lost.
    bool valid() const { return m_screen && !xcb_connection_has_error(m_connection); }
    operator xcb_connection_t*() const { return m_connection; }
    int fileDescriptor() const { return xcb_get_file_descriptor(m_connection); }

    const xcb_screen_t& screen() const { return *m_screen; }
    xcb_window_t root() const { return m_screen->root; }
    Rect rootRect() const { return {0, 0, m_screen->width_in_pixels, m_screen->height_in_pixels}; }
    const Atoms& atoms() const { return m_atoms; }

    /// Null when the server has no such visual.
    const xcb_visualtype_t* visual(xcb_visualid_t id) const;
    /// The pixmap format of a depth; null when the server has none.
    const xcb_format_t* format(int depth) const;

    bool hasComposite() const { return m_hasComposite; }
    bool hasDamage() const { return m_hasDamage; }
    bool hasRandr() const { return m_hasRandr; }
    bool hasShape() const { return m_hasShape; }
    bool hasSharedMemory() const { return m_hasSharedMemory; }
    bool hasRender() const { return m_hasRender; }

    /// The whole of a string property, at most 1 MiB; empty when it is missing.
    std::string stringProperty(xcb_window_t window, xcb_atom_t property) const;
    bool selectionOwned(xcb_atom_t selection) const;

    /// The reply of a request by its xcb_<name> and xcb_<name>_reply; null after an error, which is dropped.
    template <typename Cookie, typename Reply>
    XReply<Reply> reply(Cookie cookie,
                        Reply* (*fetch)(xcb_connection_t*, Cookie, xcb_generic_error_t**)) const {
        xcb_generic_error_t* error = nullptr;
        XReply<Reply> result(fetch(m_connection, cookie, &error));
        std::free(error);
        return result;
    }
    /// Whether a checked request succeeded.
    bool succeeded(xcb_void_cookie_t cookie) const;

private:
    void askVersions();
    void internAtoms();

    xcb_connection_t* m_connection = nullptr;
    const xcb_screen_t* m_screen = nullptr;
    Atoms m_atoms;
    bool m_hasComposite = false;
    bool m_hasDamage = false;
    bool m_hasRandr = false;
    bool m_hasShape = false;
    bool m_hasSharedMemory = false;
    bool m_hasRender = false;
};

} // namespace framora
