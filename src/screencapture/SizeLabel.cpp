#include "screencapture/SizeLabel.h"

#include <cmath>
#include <numbers>

namespace framora {

namespace {

// In points.
constexpr double kFontSize = 12.5;
constexpr double kPadX = 10;
constexpr double kHeight = 25;
constexpr double kRadius = 7.5;
constexpr double kCrossGap = 4.5;
constexpr const char* kCross = "\u00d7";

void roundedBox(cairo_t* cr, double x, double y, double w, double h, double r) {
    constexpr double kQuarter = std::numbers::pi / 2;
    cairo_new_sub_path(cr);
    cairo_arc(cr, x + w - r, y + r, r, -kQuarter, 0);
    cairo_arc(cr, x + w - r, y + h - r, r, 0, kQuarter);
    cairo_arc(cr, x + r, y + h - r, r, kQuarter, 2 * kQuarter);
    cairo_arc(cr, x + r, y + r, r, 2 * kQuarter, 3 * kQuarter);
    cairo_close_path(cr);
}

double advance(cairo_t* cr, const char* text) {
    cairo_text_extents_t extents;
    cairo_text_extents(cr, text, &extents);
    return extents.x_advance;
}

} // namespace

SizeLabel::SizeLabel(double ratio) : m_ratio(ratio) {}

void SizeLabel::selectFont(cairo_t* cr) const {
    cairo_select_font_face(cr, "Inter", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cr, kFontSize * m_ratio);
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_antialias(options,
                                     CAIRO_ANTIALIAS_GRAY); // over a picture, subpixels would show colour
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_set_font_options(cr, options);
    cairo_font_options_destroy(options);
}

void SizeLabel::prepare() {
    if (m_prepared)
        return;
    m_prepared = true;
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 64, 64);
    cairo_t* cr = cairo_create(surface);
    selectFont(cr);
    for (char digit = '0'; digit <= '9'; ++digit) {
        const char text[] = {digit, 0};
        m_metrics.digit = std::max(m_metrics.digit, advance(cr, text));
    }
    m_metrics.cross = advance(cr, kCross);
    cairo_text_extents_t extents;
    cairo_text_extents(cr, "0", &extents);
    m_metrics.ascent = extents.height;
    cairo_move_to(cr, 4, 32);
    cairo_show_text(cr, "0123456789\u00d7"); // rasterise every glyph once
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
}

double SizeLabel::textWidth(const std::string& digits) const {
    return m_metrics.digit * static_cast<double>(digits.size());
}

Rect SizeLabel::measured(int width, int height) {
    prepare();
    const double text = textWidth(std::to_string(width)) + textWidth(std::to_string(height)) +
                        m_metrics.cross + 2 * kCrossGap * m_ratio;
    return {0, 0, static_cast<int>(std::ceil(text + 2 * kPadX * m_ratio)),
            static_cast<int>(std::ceil(kHeight * m_ratio))};
}

double SizeLabel::drawDigits(cairo_t* cr, double x, double y, const std::string& digits) const {
    for (const char digit : digits) {
        const char text[] = {digit, 0};
        cairo_move_to(cr, x + (m_metrics.digit - advance(cr, text)) / 2, y);
        cairo_show_text(cr, text);
        x += m_metrics.digit;
    }
    return x;
}

void SizeLabel::draw(cairo_t* cr, const Rect& box, int width, int height) {
    prepare();
    const double line = std::max(1.0, std::floor(m_ratio));
    roundedBox(cr, box.x, box.y, box.width, box.height, kRadius * m_ratio);
    cairo_set_source_rgba(cr, 0.07, 0.07, 0.09, 0.86);
    cairo_fill(cr);
    // A light hairline keeps the pill's shape on dark pictures.
    roundedBox(cr, box.x + line / 2, box.y + line / 2, box.width - line, box.height - line,
               kRadius * m_ratio - line / 2);
    cairo_set_source_rgba(cr, 1, 1, 1, 0.20);
    cairo_set_line_width(cr, line);
    cairo_stroke(cr);

    selectFont(cr);
    const std::string left = std::to_string(width);
    const std::string right = std::to_string(height);
    const double total = textWidth(left) + textWidth(right) + m_metrics.cross + 2 * kCrossGap * m_ratio;
    const double y = std::round(box.y + (box.height + m_metrics.ascent) / 2);
    double x = box.x + (box.width - total) / 2;
    cairo_set_source_rgb(cr, 1, 1, 1);
    x = drawDigits(cr, x, y, left) + kCrossGap * m_ratio;
    cairo_set_source_rgba(cr, 1, 1, 1, 0.6);
    cairo_move_to(cr, x, y);
    cairo_show_text(cr, kCross);
    cairo_set_source_rgb(cr, 1, 1, 1);
    drawDigits(cr, x + m_metrics.cross + kCrossGap * m_ratio, y, right);
}

} // namespace framora
