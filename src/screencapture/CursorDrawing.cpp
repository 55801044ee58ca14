#include "screencapture/CursorDrawing.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace framora {

namespace {

// Points of the camera's square; the middle is what it points at.
constexpr int kSide = 31;

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

CursorDrawing::CursorDrawing(CaptureMode mode, double ratio)
    : m_mode(mode), m_ratio(ratio), m_line(std::max(1, static_cast<int>(ratio))),
      m_hole(static_cast<int>(std::lround(4 * ratio))), m_arm(static_cast<int>(std::lround(14 * ratio))) {}

int CursorDrawing::side() const {
    if (m_mode == CaptureMode::Window)
        return static_cast<int>(std::lround(kSide * m_ratio));
    return 2 * middle() + m_line;
}

int CursorDrawing::middle() const {
    return m_mode == CaptureMode::Window ? side() / 2 : m_arm + m_line;
}

void CursorDrawing::draw(cairo_t* cr) const {
    if (m_mode == CaptureMode::Area) {
        drawCross(cr);
        return;
    }
    cairo_save(cr);
    cairo_scale(cr, m_ratio, m_ratio);
    drawCamera(cr);
    cairo_restore(cr);
}

void CursorDrawing::drawCross(cairo_t* cr) const {
    cairo_set_source_rgba(cr, 0, 0, 0, 0.55);
    arms(cr, m_line);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_rgb(cr, 1, 1, 1);
    arms(cr, 0);
    cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
}

void CursorDrawing::arms(cairo_t* cr, int grow) const {
    const int thick = m_line + 2 * grow;
    const int length = m_arm - m_hole + 2 * grow;
    for (const int from : {middle() - m_arm - grow, middle() + m_line + m_hole - grow}) {
        cairo_rectangle(cr, from, middle() - grow, length, thick);
        cairo_rectangle(cr, middle() - grow, from, thick, length);
    }
    cairo_fill(cr);
}

} // namespace framora
