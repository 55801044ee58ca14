#pragma once

#include "screencapture/CaptureMode.h"

#include <cairo.h>

namespace framora {

/// The pictures of the two modes' pointers: a fine cross of whole pixels with an open middle, whose lines are
/// as thick as those of the overlay and run on in them, and a camera.
class CursorDrawing {
public:
    /// `ratio` is device pixels a point.
    CursorDrawing(CaptureMode mode, double ratio);

    /// Pixels of the square.
    int side() const;
    /// The column and row of the pixel that it points at.
    int middle() const;
    /// Draws onto transparent pixels, its top left corner at the origin.
    void draw(cairo_t* cr) const;

private:
    void drawCross(cairo_t* cr) const;
    void arms(cairo_t* cr, int grow) const;

    CaptureMode m_mode;
    double m_ratio;
    int m_line;
    int m_hole; // from the lines that cross to where an arm begins
    int m_arm;  // and to where it ends
};

} // namespace framora
