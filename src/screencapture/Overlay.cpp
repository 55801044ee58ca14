#include "screencapture/Overlay.h"

#include "screencapture/LabelPlacement.h"
#include "screencapture/XConnection.h"

#include <cmath>

namespace framora {

Overlay::Overlay(const XConnection& connection, FrozenScreen& frozen, const PictureFormats& formats)
    : m_connection(connection), m_frozen(frozen), m_rootFormat(formats.root) {
    if (const auto* shm = xcb_get_extension_data(connection, &xcb_shm_id); shm && shm->present)
        m_completionEvent = static_cast<uint8_t>(shm->first_event + XCB_SHM_COMPLETION);

    m_window = xcb_generate_id(connection);
    const uint32_t events = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_VISIBILITY_CHANGE;
    // No background: the server must not paint what the first frame covers at once.
    const uint32_t values[] = {XCB_BACK_PIXMAP_NONE, 1, events};
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, m_window, connection.root(), 0, 0,
                      connection.screen().width_in_pixels, connection.screen().height_in_pixels, 0,
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
    if (m_frame->put(m_window, m_gc, m_connection.screen().root_depth, m_frozen.format(), part, notify))
        ++m_framesUnderway;
}

bool Overlay::prepare() {
    if (m_frame)
        return true;
    const ServerImage* frozen = m_frozen.image();
    if (!frozen)
        return false;
    m_frame = ServerImage::create(m_connection, frozen->width(), frozen->height());
    return m_frame != nullptr;
}

OverlayPainter& Overlay::painter(double ratio) {
    return m_painters.try_emplace(ratio, *m_frozen.image(), *m_frame, ratio).first->second;
}

bool Overlay::show() {
    const bool byServer = m_rootFormat && m_frozen.pixmap();
    if (!byServer && !prepare())
        return false;
    const Rect whole = m_connection.rootRect();
    const uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection, m_window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    if (byServer)
        showByServer(whole);
    else {
        painter(m_shown.ratio).paint({}, whole);
        xcb_map_window(m_connection, m_window);
        put(whole, true);
    }
    xcb_flush(m_connection);
    return true;
}

void Overlay::showByServer(const Rect& whole) {
    const auto width = static_cast<uint16_t>(whole.width);
    const auto height = static_cast<uint16_t>(whole.height);
    const xcb_render_picture_t picture = xcb_generate_id(m_connection);
    const uint16_t alpha = OverlayPainter::kDim * 0x101;
    const xcb_rectangle_t all{0, 0, width, height};
    // All in one go, so that nobody sees the steps.
    xcb_map_window(m_connection, m_window);
    xcb_copy_area(m_connection, m_frozen.pixmap(), m_window, m_gc, 0, 0, 0, 0, width, height);
    xcb_render_create_picture(m_connection, picture, m_window, m_rootFormat, 0, nullptr);
    xcb_render_fill_rectangles(m_connection, XCB_RENDER_PICT_OP_OVER, picture, {0, 0, 0, alpha}, 1, &all);
    xcb_render_free_picture(m_connection, picture);
}

void Overlay::hide() {
    if (m_window)
        xcb_destroy_window(m_connection, m_window);
    m_window = XCB_WINDOW_NONE;
    xcb_flush(m_connection);
}

std::vector<Rect> Overlay::difference() {
    if (m_shown.ratio == m_wanted.ratio)
        return painter(m_wanted.ratio).difference(m_shown.scene, m_wanted.scene);
    // Lines of another width: all that is seen goes, all that is wanted comes.
    auto parts = painter(m_shown.ratio).difference(m_shown.scene, {});
    const auto coming = painter(m_wanted.ratio).difference({}, m_wanted.scene);
    parts.insert(parts.end(), coming.begin(), coming.end());
    return parts;
}

void Overlay::flush() {
    if (busy() || m_wanted == m_shown || !prepare())
        return;
    const auto parts = difference();
    m_shown = m_wanted;
    for (const Rect& part : parts)
        painter(m_shown.ratio).paint(m_shown.scene, part);
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
        if (expose.window == m_window && prepare()) {
            const Rect part{expose.x, expose.y, expose.width, expose.height};
            painter(m_shown.ratio).paint(m_shown.scene, part);
            put(part, false);
        }
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

void Overlay::warmUp(double ratio) {
    if (prepare())
        painter(ratio).label().prepare();
}

OverlayScene::Label Overlay::labelFor(const Rect& selection, Point corner, const Rect& monitor,
                                      double ratio) {
    constexpr double kGap = 14; // points: clears the arms of the crosshair
    if (!prepare())
        return {};
    const Rect size = painter(ratio).label().measured(selection.width, selection.height);
    const Rect box = placeLabel(selection, corner, size.width, size.height,
                                static_cast<int>(std::lround(kGap * ratio)), monitor);
    return {box, selection.width, selection.height};
}

} // namespace framora
