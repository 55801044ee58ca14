#pragma once

#include "screencapture/OverlayScene.h"
#include "screencapture/PixelImage.h"
#include "screencapture/SizeLabel.h"

#include <cairo.h>
#include <memory>
#include <vector>

namespace framora {

/// Draws the overlay's scenes into an image of the screen's size; it knows pixels and no window.
class OverlayPainter {
public:
    /// The black laid over what is not selected, of 255.
    static constexpr uint32_t kDim = 96;

    /// `frozen` and `frame` have one size and outlive the painter; `ratio` is device pixels a point.
    OverlayPainter(const PixelImage& frozen, PixelImage& frame, double ratio);
    /// For a frame that is only a part of the screen, which is this box around it: what is selected may go on
    /// beyond the frame.
    OverlayPainter(const PixelImage& frozen, PixelImage& frame, double ratio, const Rect& screen);

    SizeLabel& label() { return m_label; }
    /// The boxes in which two scenes differ, clipped to the frame; they may overlap.
    std::vector<Rect> difference(const OverlayScene& before, const OverlayScene& after) const;
    /// Draws this part of a scene anew, whatever the frame held there.
    void paint(const OverlayScene& scene, const Rect& part);

private:
    struct CairoDeleter {
        void operator()(cairo_t* cr) const { cairo_destroy(cr); }
        void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    };

    void paintBase(const OverlayScene& scene, const Rect& part);
    void paintSelection(cairo_t* cr, const Rect& selection) const;
    void paintHighlight(cairo_t* cr, const OverlayScene& scene) const;
    void paintGuides(cairo_t* cr, const OverlayScene::Guides& guides) const;
    Rect bounds() const { return {0, 0, m_frame.width(), m_frame.height()}; }

    const PixelImage& m_frozen;
    PixelImage& m_frame;
    Rect m_screen;
    double m_ratio;
    int m_line; // pixels of a thin line
    SizeLabel m_label;
    std::unique_ptr<cairo_surface_t, CairoDeleter> m_surface;
    std::unique_ptr<cairo_t, CairoDeleter> m_cairo;
};

} // namespace framora
