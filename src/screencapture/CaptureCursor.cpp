#include "screencapture/CaptureCursor.h"

#include "screencapture/CursorDrawing.h"
#include "screencapture/XConnection.h"

#include <cairo.h>
#include <string_view>
#include <xcb/render.h>

namespace framora {

CaptureCursor::CaptureCursor(const XConnection& connection, const PictureFormats& formats, double ratio)
    : m_connection(connection), m_format(formats.argb), m_ratio(ratio) {}

xcb_cursor_t CaptureCursor::forMode(CaptureMode mode) {
    xcb_cursor_t& cursor = mode == CaptureMode::Area ? m_area : m_window;
    if (!cursor)
        cursor = drawn(mode);
    if (!cursor)
        cursor = fromFont(mode);
    return cursor;
}

xcb_cursor_t CaptureCursor::drawn(CaptureMode mode) const {
    const CursorDrawing drawing(mode, m_ratio);
    const auto side = static_cast<uint16_t>(drawing.side());
    if (!m_format || xcb_get_setup(m_connection)->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST)
        return XCB_CURSOR_NONE;
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, side, side);
    cairo_t* cr = cairo_create(surface);
    drawing.draw(cr);
    cairo_destroy(cr);
    cairo_surface_flush(surface);

    xcb_cursor_t cursor = XCB_CURSOR_NONE;
    if (cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS) {
        const xcb_pixmap_t pixmap = xcb_generate_id(m_connection);
        const xcb_gcontext_t gc = xcb_generate_id(m_connection);
        const xcb_render_picture_t picture = xcb_generate_id(m_connection);
        xcb_create_pixmap(m_connection, 32, pixmap, m_connection.root(), side, side);
        xcb_create_gc(m_connection, gc, pixmap, 0, nullptr);
        // A line of 32-bit pixels has no padding in either world.
        xcb_put_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, gc, side, side, 0, 0, 0, 32,
                      static_cast<uint32_t>(side) * side * 4, cairo_image_surface_get_data(surface));
        xcb_render_create_picture(m_connection, picture, pixmap, m_format, 0, nullptr);
        cursor = xcb_generate_id(m_connection);
        const auto middle = static_cast<uint16_t>(drawing.middle());
        if (!m_connection.succeeded(
                xcb_render_create_cursor_checked(m_connection, cursor, picture, middle, middle)))
            cursor = XCB_CURSOR_NONE;
        xcb_render_free_picture(m_connection, picture);
        xcb_free_gc(m_connection, gc);
        xcb_free_pixmap(m_connection, pixmap);
    }
    cairo_surface_destroy(surface);
    return cursor;
}

xcb_cursor_t CaptureCursor::fromFont(CaptureMode mode) const {
    constexpr std::string_view kFont = "cursor";
    constexpr uint16_t kCrosshair = 34;
    constexpr uint16_t kHand = 60;
    const uint16_t glyph = mode == CaptureMode::Area ? kCrosshair : kHand;
    const xcb_font_t font = xcb_generate_id(m_connection);
    xcb_open_font(m_connection, font, static_cast<uint16_t>(kFont.size()), kFont.data());
    xcb_cursor_t cursor = xcb_generate_id(m_connection);
    if (!m_connection.succeeded(xcb_create_glyph_cursor_checked(m_connection, cursor, font, font, glyph,
                                                                glyph + 1, 0, 0, 0, 0xffff, 0xffff, 0xffff)))
        cursor = XCB_CURSOR_NONE; // the grab then keeps the pointer there is
    xcb_close_font(m_connection, font);
    return cursor;
}

} // namespace framora
