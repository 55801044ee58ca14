#pragma once

#include "editor/render/raster/GlassBackdrop.h"
#include "editor/render/raster/Paint.h"
#include "editor/render/raster/Placement.h"
#include "editor/render/raster/RoundedRect.h"

#include <memory>
#include <vector>

namespace framora::raster {

/// A card of glass: what lies behind it, seen through a pane whose rim is bevelled. To be mixed as a layer
/// that replaces what lies under it.
class GlassPaint : public Paint {
public:
    /// Lengths are in points of the card.
    struct Look {
        double rim = 0;   ///< How far the bevel reaches in from the edge.
        double bend = 0;  ///< How far inside the edge itself sees; it fades towards the end of the rim.
        Float4 veil = {}; ///< A colour over everything, premultiplied.
        double glow = 0;  ///< White at the edge where it faces the light at the top left, 0...1.
        double shade = 0; ///< Black on the bevel where it faces away, 0...1.
    };

    /// Where a point lies below the edge of the card.
    struct Edge {
        double depth; ///< To the edge, in points; exact on the straight sides, close to it in the corners.
        Vec2 outward; ///< Of length 1.
    };
    /// Of a point inside `card`.
    static Edge edge(const RoundedRect& card, Vec2 point);

    /// `window` says where `card` is seen.
    GlassPaint(std::shared_ptr<const GlassBackdrop> backdrop, std::shared_ptr<const GlassWindow> window,
               const RoundedRect& card, const Placement& placement, const Look& look);

    /// Transparent where nothing is seen of the card.
    void shade(int x, int y, int count, Float4* out) const override;
    /// Dithered: a blurred picture has steps of less than one of 255.
    void mix(const TileRect& tile, MixPixel* out) const override;
    bool isOpaque() const override { return false; }

private:
    /// What the pane does to what is seen through one point of it.
    struct Bevel {
        Vec2 bend;         ///< From the point to the one that is seen, in points.
        Vec2 bendPixels;   ///< The same in pixels, unless the card is tilted.
        Float4 added = {}; ///< What lies over what is seen, premultiplied.
    };
    Bevel bevel(const Edge& edge) const;
    void makeColumns();
    /// shade() of the pixels [from, to), all of which are seen.
    void shadeRun(int from, int to, int y, Float4* out) const;
    /// The same as they are mixed, without the dither; of an upright card.
    void mixUpright(int from, int to, int y, MixPixel* out) const;
    /// Where the columns of an upright card look, from m_columns.first on: in cells of the backdrop.
    struct View {
        std::vector<int> cells;
        std::vector<MixPixel> parts; ///< Of the way to the next cell, as interpolate() wants them.
        void add(const GlassBackdrop::Place& place);
    };
    /// What the columns [from, to) show of a row of the backdrop.
    void look(const View& view, const GlassBackdrop::Place& down, int from, int to, MixPixel* out) const;
    /// The columns of an upright card that lie so deep below its left and its right side.
    GlassWindow::Columns columnsBelow(double depth) const;

    std::shared_ptr<const GlassBackdrop> m_backdrop;
    std::shared_ptr<const GlassWindow> m_window;
    RoundedRect m_card;
    double m_cornerExtent;
    double m_cornerExponent;
    Homography m_toLocal;
    Homography m_toOutput;
    Look m_look;
    bool m_isTilted;
    /// Of an upright card all rows are alike but for the corners and the rims at the top and the bottom.
    bool m_isUpright;
    GlassWindow::Columns m_columns; ///< All that are seen.
    View m_straight;
    View m_bent;                   ///< By the bevels along the left and the right side.
    std::vector<MixPixel> m_added; ///< What these add.
};

} // namespace framora::raster
