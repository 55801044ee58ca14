#include "screencapture/CaptureCursor.h"

#include "screencapture/XConnection.h"

#include <algorithm>
#include <cairo.h>
#include <cmath>
#include <numbers>
#include <xcb/render.h>

namespace framora {

namespace {

// Points of the camera's square; the middle is what it points at.
constexpr int kSide = 31;

/// A cross of whole pixels, whose lines are as thick as those of the overlay and run on in them.
struct Cross {
    explicit Cross(double ratio)
        : line(std::max(1, static_cast<int>(ratio))), hole(static_cast<int>(std::lround(4 * ratio))),
          arm(static_cast<int>(std::lround(14 * ratio))) {}

    /// The first pixel of its lines, which stands on what it points at.
    int middle() const { return arm + line; }
    int side() const { return 2 * middle() + line; }

    void draw(cairo_t* cr) const {
        cairo_set_source_rgba(cr, 0, 0, 0, 0.55);
        arms(cr, line);
        cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
        cairo_set_source_rgb(cr, 1, 1, 1);
        arms(cr, 0);
    }

    int line;
    int hole; // from the lines that cross to where an arm begins
    int arm;  // and to where it ends

private:
    void arms(cairo_t* cr, int grow) const {
        const int thick = line + 2 * grow;
        const int length = arm - hole + 2 * grow;
        for (const int from : {middle() - arm - grow, middle() + line + hole - grow}) {
            cairo_rectangle(cr, from, middle() - grow, length, thick);
            cairo_rectangle(cr, middle() - grow, from, thick, length);
        }
        cairo_fill(cr);
    }
};

void drawCamera(cairo_t* cr) {
    constexpr double kQuarter = std::numbers::pi / 2;
    const auto body = [cr](double grow) {
        const double x = 5 - grow;
        const double y = 9.5 - grow;
        const double w = 21 + 2 * grow;
        const double h = 14.5 + 2 * grow;
        const double r = 3.5 + grow;
        cairo_new_path(cr);
        cairo_move_to(cr, x + r, y);
        cairo_line_to(cr, 11.5 - grow / 2, y);
        cairo_line_to(cr, 13 - grow / 2, y - 3);
        cairo_line_to(cr, 18 + grow / 2, y - 3);
        cairo_line_to(cr, 19.5 + grow / 2, y);
        cairo_arc(cr, x + w - r, y + r, r, -kQuarter, 0);
        cairo_arc(cr, x + w - r, y + h - r, r, 0, kQuarter);
        cairo_arc(cr, x + r, y + h - r, r, kQuarter, 2 * kQuarter);
        cairo_arc(cr, x + r, y + r, r, 2 * kQuarter, 3 * kQuarter);
        cairo_close_path(cr);
        cairo_fill(cr);
    };
    cairo_set_source_rgba(cr, 0, 0, 0, 0.6);
    body(1.3);
    cairo_set_source_rgb(cr, 1, 1, 1);
    body(0);
    cairo_set_source_rgba(cr, 0.1, 0.1, 0.12, 1);
    cairo_set_line_width(cr, 1.6);
    cairo_arc(cr, 15.5, 16.5, 4.2, 0, 2 * std::numbers::pi);
    cairo_stroke(cr);
    cairo_arc(cr, 15.5, 16.5, 1.2, 0, 2 * std::numbers::pi);
    cairo_fill(cr);
}

} // namespace

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
    const bool area = mode == CaptureMode::Area;
    const Cross cross(m_ratio);
    const auto side = static_cast<uint16_t>(area ? cross.side() : std::lround(kSide * m_ratio));
    if (!m_format || xcb_get_setup(m_connection)->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST)
        return XCB_CURSOR_NONE;
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, side, side);
    cairo_t* cr = cairo_create(surface);
    if (area) {
        cross.draw(cr);
    } else {
        cairo_scale(cr, m_ratio, m_ratio);
        drawCamera(cr);
    }
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
        const auto middle = static_cast<uint16_t>(area ? cross.middle() : side / 2);
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
