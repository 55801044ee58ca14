#include "screencapture/Overlay.h"

#include "screencapture/LabelPlacement.h"
#include "screencapture/XConnection.h"

#include <cmath>

namespace framora {

Overlay::Overlay(const XConnection& connection, const ServerImage& frozen, double ratio)
    : m_connection(connection), m_frozen(frozen), m_ratio(ratio),
      m_format(PixelFormat::of(connection, connection.screen().root_depth, connection.screen().root_visual)) {
    m_frame = ServerImage::create(connection, frozen.width(), frozen.height());
    if (!m_frame || !m_format.supported())
        return;
    m_painter = std::make_unique<OverlayPainter>(frozen, *m_frame, ratio);
    if (const auto* shm = xcb_get_extension_data(connection, &xcb_shm_id); shm && shm->present)
        m_completionEvent = static_cast<uint8_t>(shm->first_event + XCB_SHM_COMPLETION);

    m_window = xcb_generate_id(connection);
    const uint32_t events = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_VISIBILITY_CHANGE;
    // No background: the server must not paint what the first frame covers at once.
    const uint32_t values[] = {XCB_BACK_PIXMAP_NONE, 1, events};
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, m_window, connection.root(), 0, 0,
                      static_cast<uint16_t>(frozen.width()), static_cast<uint16_t>(frozen.height()), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    constexpr std::string_view kName = "framora-screencapture";
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                        kName.size(), kName.data());
    // A compositor that steps aside for a full-screen window flickers when it comes and goes.
    const uint32_t keepCompositing = 2;
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, m_window, connection.atoms().bypassCompositor,
                        XCB_ATOM_CARDINAL, 32, 1, &keepCompositing);
    m_gc = xcb_generate_id(connection);
    const uint32_t noExposures = 0;
    xcb_create_gc(connection, m_gc, m_window, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
}

Overlay::~Overlay() {
    hide();
}

void Overlay::put(const Rect& part, bool notify) {
    if (m_frame->put(m_window, m_gc, m_connection.screen().root_depth, m_format, part, notify))
        ++m_framesUnderway;
}

void Overlay::show(const OverlayScene& scene) {
    m_shown = m_wanted = scene;
    const Rect whole{0, 0, m_frame->width(), m_frame->height()};
    m_painter->paint(scene, whole);
    const uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection, m_window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_map_window(m_connection, m_window);
    put(whole, true);
    xcb_flush(m_connection);
}

void Overlay::hide() {
    if (m_window)
        xcb_destroy_window(m_connection, m_window);
    m_window = XCB_WINDOW_NONE;
    xcb_flush(m_connection);
}

void Overlay::flush() {
    if (busy() || m_wanted == m_shown)
        return;
    const auto parts = m_painter->difference(m_shown, m_wanted);
    m_shown = m_wanted;
    for (const Rect& part : parts)
        m_painter->paint(m_shown, part);
    for (std::size_t i = 0; i < parts.size(); ++i)
        put(parts[i], i + 1 == parts.size());
    xcb_flush(m_connection);
}

bool Overlay::handleEvent(const xcb_generic_event_t& event) {
    const uint8_t type = event.response_type & 0x7f;
    if (m_completionEvent && type == m_completionEvent) {
        m_framesUnderway = std::max(0, m_framesUnderway - 1);
        return true;
    }
    if (type == XCB_EXPOSE) {
        const auto& expose = reinterpret_cast<const xcb_expose_event_t&>(event);
        if (expose.window == m_window)
            put({expose.x, expose.y, expose.width, expose.height}, false);
        return true;
    }
    if (type == XCB_VISIBILITY_NOTIFY) {
        const auto& visibility = reinterpret_cast<const xcb_visibility_notify_event_t&>(event);
        if (visibility.window == m_window && visibility.state != XCB_VISIBILITY_UNOBSCURED &&
            m_raisesLeft > 0) {
            --m_raisesLeft;
            const uint32_t above = XCB_STACK_MODE_ABOVE;
            xcb_configure_window(m_connection, m_window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
        }
        return true;
    }
    return false;
}

void Overlay::warmUp() {
    m_painter->label().prepare();
}

OverlayScene::Label Overlay::labelFor(const Rect& selection, Point corner, const Rect& monitor) {
    constexpr double kGap = 14; // points: clears the arms of the crosshair
    const Rect size = m_painter->label().measured(selection.width, selection.height);
    const Rect box = placeLabel(selection, corner, size.width, size.height,
                                static_cast<int>(std::lround(kGap * m_ratio)), monitor);
    return {box, selection.width, selection.height};
}

} // namespace framora
