#pragma once

#include "screencapture/Geometry.h"

#include <cairo.h>
#include <string>

namespace framora {

/// The pill that shows the size of the selection, drawn with Cairo; digits have one width, so that it does
/// not tremble while the numbers change.
class SizeLabel {
public:
    /// `ratio` is device pixels a point.
    explicit SizeLabel(double ratio);

    /// Loads the font, some ten milliseconds the first time; the other functions do it when it was not done.
    void prepare();
    bool prepared() const { return m_prepared; }
    /// The pill's size in pixels for a selection of width x height.
    Rect measured(int width, int height);
    /// Draws the pill into `box`.
    void draw(cairo_t* cr, const Rect& box, int width, int height);

private:
    struct Metrics {
        double digit = 0;
        double cross = 0;
        double ascent = 0; // of the digits
    };

    void selectFont(cairo_t* cr) const;
    double textWidth(const std::string& digits) const;
    double drawDigits(cairo_t* cr, double x, double y, const std::string& digits) const;

    double m_ratio;
    bool m_prepared = false;
    Metrics m_metrics;
};

} // namespace framora
