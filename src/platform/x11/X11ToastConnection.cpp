#include "platform/x11/X11ToastConnection.h"

#include "platform/x11/X11ToastPanel.h"
#include "platform/x11/XcbReply.h"

#include <algorithm>
#include <array>
#include <string>
#include <xcb/composite.h>
#include <xcb/xcb_cursor.h>
#include <xcb/xfixes.h>

namespace framora {

X11ToastConnection::X11ToastConnection() {
    int screenNumber = 0;
    m_connection = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(m_connection))
        return;
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection));
    for (int i = 0; i < screenNumber && screens.rem > 1; ++i)
        xcb_screen_next(&screens);
    m_screen = screens.data;

    const std::string compositor = "_NET_WM_CM_S" + std::to_string(screenNumber);
    const std::array<std::pair<const char*, xcb_atom_t Atoms::*>, 13> wanted{{
        {compositor.c_str(), &Atoms::compositor},
        {"_NET_WM_WINDOW_TYPE", &Atoms::windowType},
        {"_NET_WM_WINDOW_TYPE_NOTIFICATION", &Atoms::windowTypeNotification},
        {"_NET_WM_STATE", &Atoms::state},
        {"_NET_WM_STATE_ABOVE", &Atoms::stateAbove},
        {"_NET_WM_STATE_STICKY", &Atoms::stateSticky},
        {"_NET_WM_STATE_SKIP_TASKBAR", &Atoms::stateSkipTaskbar},
        {"_NET_WM_STATE_SKIP_PAGER", &Atoms::stateSkipPager},
        {"_NET_WM_DESKTOP", &Atoms::desktop},
        {"_NET_WM_NAME", &Atoms::name},
        {"UTF8_STRING", &Atoms::utf8String},
        {"_NET_WM_BYPASS_COMPOSITOR", &Atoms::bypassCompositor},
        {"_COMPTON_SHADOW", &Atoms::comptonShadow},
    }};
    std::array<xcb_intern_atom_cookie_t, wanted.size()> cookies;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        const std::string_view name = wanted[i].first;
        cookies[i] = xcb_intern_atom(m_connection, 0, std::uint16_t(name.size()), name.data());
    }
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        const XcbReply<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(m_connection, cookies[i], nullptr));
        m_atoms.*wanted[i].second = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    }
    findVisual();
    watchCompositor();

    m_notifier =
        std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(m_connection), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &X11ToastConnection::dispatch);
    flush();
}

X11ToastConnection::~X11ToastConnection() {
    m_notifier.reset();
    xcb_disconnect(m_connection);
}

bool X11ToastConnection::isValid() const {
    return m_screen && !xcb_connection_has_error(m_connection);
}

void X11ToastConnection::findVisual() {
    m_visual = m_screen->root_visual;
    m_depth = m_screen->root_depth;
    m_colormap = m_screen->default_colormap;
    for (auto depth = xcb_screen_allowed_depths_iterator(m_screen); depth.rem; xcb_depth_next(&depth)) {
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem; xcb_visualtype_next(&visual)) {
            const bool hasOurColors =
                visual.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR && visual.data->red_mask == 0xff0000;
            if (visual.data->visual_id == m_visual)
                m_hasOurColors = hasOurColors;
            if (depth.data->depth != 32 || !hasOurColors)
                continue;
            m_visual = visual.data->visual_id;
            m_depth = 32;
            m_hasOurColors = true;
            m_colormap = xcb_generate_id(m_connection);
            xcb_create_colormap(m_connection, XCB_COLORMAP_ALLOC_NONE, m_colormap, m_screen->root, m_visual);
            return;
        }
    }
}

void X11ToastConnection::watchCompositor() {
    const auto* fixes = xcb_get_extension_data(m_connection, &xcb_xfixes_id);
    if (fixes && fixes->present) {
        // Using an extension of this name needs its version agreed first.
        const XcbReply<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
            m_connection,
            xcb_xfixes_query_version(m_connection, XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION),
            nullptr));
        if (version) {
            m_xfixesFirstEvent = fixes->first_event;
            xcb_xfixes_select_selection_input(m_connection, m_screen->root, m_atoms.compositor,
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                                  XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                                  XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
        }
    }
    const auto* composite = xcb_get_extension_data(m_connection, &xcb_composite_id);
    if (composite && composite->present) {
        const XcbReply<xcb_composite_query_version_reply_t> version(xcb_composite_query_version_reply(
            m_connection, xcb_composite_query_version(m_connection, 0, 4), nullptr));
        m_hasComposite = version && (version->major_version > 0 || version->minor_version >= 2);
    }
    readCompositor();
}

bool X11ToastConnection::isRedirected(xcb_window_t window) {
    // Only a redirected window has a picture of its own to name.
    const xcb_pixmap_t pixmap = xcb_generate_id(m_connection);
    const auto cookie = xcb_composite_name_window_pixmap_checked(m_connection, window, pixmap);
    const XcbReply<xcb_generic_error_t> error(xcb_request_check(m_connection, cookie));
    if (error || xcb_connection_has_error(m_connection))
        return false;
    xcb_free_pixmap(m_connection, pixmap);
    return true;
}

void X11ToastConnection::readCompositor() {
    const XcbReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        m_connection, xcb_get_selection_owner(m_connection, m_atoms.compositor), nullptr));
    m_hasCompositor = owner && owner->owner != XCB_NONE;
}

xcb_cursor_t X11ToastConnection::handCursor() {
    if (m_cursorLoaded)
        return m_handCursor;
    m_cursorLoaded = true;
    xcb_cursor_context_t* context = nullptr;
    // The function wants the screen mutable but only reads it.
    if (xcb_cursor_context_new(m_connection, const_cast<xcb_screen_t*>(m_screen), &context) < 0)
        return XCB_NONE;
    for (const char* name : {"pointer", "pointing_hand", "hand2", "hand1"}) {
        m_handCursor = xcb_cursor_load_cursor(context, name);
        if (m_handCursor != XCB_NONE)
            break;
    }
    xcb_cursor_context_free(context);
    return m_handCursor;
}

void X11ToastConnection::add(X11ToastPanel& panel) {
    m_panels.push_back(&panel);
    if (m_panels.size() == 1)
        selectRootEvents();
}

void X11ToastConnection::remove(X11ToastPanel& panel) {
    std::erase(m_panels, &panel);
    if (m_panels.empty())
        selectRootEvents();
}

void X11ToastConnection::selectRootEvents() {
    // Nothing wakes the program while no toast is there.
    const std::uint32_t mask =
        m_panels.empty()
            ? 0u
            : std::uint32_t(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    xcb_change_window_attributes(m_connection, m_screen->root, XCB_CW_EVENT_MASK, &mask);
}

void X11ToastConnection::flush() {
    xcb_flush(m_connection);
    if (std::exchange(m_dispatchQueued, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_dispatchQueued = false;
            dispatch();
        },
        Qt::QueuedConnection);
}

void X11ToastConnection::setWithdrawn(bool withdrawn) {
    if (m_panels.empty())
        return;
    for (auto* panel : m_panels)
        panel->setWithdrawn(withdrawn);
    const XcbReply<xcb_get_input_focus_reply_t> done(
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    flush();
}

void X11ToastConnection::dispatch() {
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)})
        deliver(*event);
    if (xcb_connection_has_error(m_connection) && m_notifier)
        m_notifier->setEnabled(false);
}

X11ToastPanel* X11ToastConnection::panelOf(xcb_window_t window) const {
    const auto found = std::find_if(m_panels.begin(), m_panels.end(),
                                    [&](const auto* panel) { return panel->window() == window; });
    return found == m_panels.end() ? nullptr : *found;
}

void X11ToastConnection::deliver(const xcb_generic_event_t& event) {
    const int type = event.response_type & 0x7f;
    // A panel may close inside its handler: each case touches it once, last.
    switch (type) {
    case XCB_EXPOSE:
        if (auto* panel = panelOf(reinterpret_cast<const xcb_expose_event_t&>(event).window))
            panel->exposed();
        return;
    case XCB_ENTER_NOTIFY:
    case XCB_LEAVE_NOTIFY:
        if (auto* panel = panelOf(reinterpret_cast<const xcb_enter_notify_event_t&>(event).event))
            panel->pointerIsOver(type == XCB_ENTER_NOTIFY);
        return;
    case XCB_BUTTON_PRESS: {
        const auto& press = reinterpret_cast<const xcb_button_press_event_t&>(event);
        auto* panel = panelOf(press.event);
        if (panel && press.detail == XCB_BUTTON_INDEX_1)
            panel->pressed(press.event_x, press.event_y);
        return;
    }
    case XCB_MAP_NOTIFY: {
        const auto& mapped = reinterpret_cast<const xcb_map_notify_event_t&>(event);
        if (!panelOf(mapped.window))
            raisePanels();
        return;
    }
    case XCB_CONFIGURE_NOTIFY: {
        const auto& configured = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        // The root window tells of every change of monitors, also where it keeps its size.
        if (configured.window == m_screen->root)
            Q_EMIT screensChanged();
        else if (!panelOf(configured.window) && panelOf(configured.above_sibling))
            raisePanels();
        return;
    }
    default:
        break;
    }
    if (m_xfixesFirstEvent >= 0 && type == m_xfixesFirstEvent + XCB_XFIXES_SELECTION_NOTIFY) {
        readCompositor();
        for (auto* panel : std::vector(m_panels))
            panel->compositorChanged();
    }
}

void X11ToastConnection::raisePanels() {
    for (auto* panel : m_panels)
        panel->keepAbove();
}

} // namespace framora
