#pragma once

#include "editor/render/raster/Compositor.h"
#include "editor/render/raster/GlassPaint.h"

#include <QSize>
#include <QSizeF>
#include <memory>
#include <optional>
#include <vector>

namespace framora {

/// What a card of glass is made of.
enum class GlassMaterial {
    clear,     ///< Polished: what lies behind is gently blurred, and bent by a bevelled rim.
    ultraThin, ///< The other ones are frosted, flat, and more and more white.
    thin,
    regular,
    thick
};

/// A card of glass around a content: a soft shadow, what lies behind seen through the material, and a bright
/// hairline. Lengths are in points of the card.
struct GlassEffectModifier {
    GlassMaterial material = GlassMaterial::regular;
    double cornerRadius = 0;
    double opacity = 1; ///< 0...1, of the material.

    static constexpr double hairlineWidth = 1; ///< Half of it lies outside of the card and is cut off.
    static constexpr double shadowOpacity = 0.2;
    static constexpr double shadowRadius = 10; ///< The deviation of its blur.
    static constexpr double shadowOffset = 5;  ///< Downwards.

    /// The card, and what of it cannot be seen because its content is opaque.
    struct Card {
        QSizeF size; ///< Points, about the origin of `placement`.
        raster::Placement placement;
        std::optional<raster::RoundedRect> hidden;
    };
    /// Layers that are ready but for the glass among them, which shows the layers under them.
    struct Prepared {
        struct Pane {
            std::size_t layer; ///< Whose paint it is to be.
            std::shared_ptr<const raster::GlassWindow> window;
            raster::GlassPaint::Look look;
            double deviation; ///< Of the blur, in pixels.
            int reach;        ///< How far below what hides it the glass sees, in pixels.
        };
        std::vector<raster::Layer> layers;
        std::optional<Pane> pane;
        /// Lays them over `under`.
        void appendTo(std::vector<raster::Layer>& under) &&;
    };
    /// The card; its content is to follow. `output` is the whole picture in pixels. A card of no size is
    /// nothing, nor is one whose numbers are not finite; when memory is short it is a plain veil.
    Prepared prepare(const Card& card, QSize output) const;
    /// Lays the card over `layers`.
    void append(std::vector<raster::Layer>& layers, const Card& card, QSize output) const {
        prepare(card, output).appendTo(layers);
    }
};

} // namespace framora
