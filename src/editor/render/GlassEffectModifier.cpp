#include "editor/render/GlassEffectModifier.h"

#include "editor/render/raster/GradientPaint.h"
#include "editor/render/raster/ShadowPaint.h"
#include "editor/render/raster/SolidPaint.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>

namespace framora {
namespace {

using raster::Coverage;
using raster::GlassBackdrop;
using raster::GlassPaint;
using raster::GlassWindow;
using raster::Homography;
using raster::Layer;
using raster::Placement;
using raster::RoundedRect;
using raster::Vec2;

struct Material {
    double blurRadius; ///< Points: the deviation.
    double veil;       ///< White, 0...1.
    bool isPolished;
};

Material properties(GlassMaterial material) {
    switch (material) {
    case GlassMaterial::clear:
        return {1.75, 0.07, true};
    case GlassMaterial::ultraThin:
        return {8, 0.2, false};
    case GlassMaterial::thin:
        return {12, 0.35, false};
    case GlassMaterial::regular:
        return {16, 0.5, false};
    case GlassMaterial::thick:
        return {20, 0.65, false};
    }
    return {0, 0, false};
}

/// How many pixels a point of the card is long in its middle, and at most at its corners.
struct Scale {
    double middle;
    double most;
};

Scale pixelsPerPoint(const RoundedRect& card, const Homography& map) {
    constexpr double nearest = 1e-3; // depth
    const auto at = [&](Vec2 p) {
        const double w = std::max(map.depth(p), nearest);
        const double x = (map(0, 0) * p.x + map(0, 1) * p.y + map(0, 2)) / w;
        const double y = (map(1, 0) * p.x + map(1, 1) * p.y + map(1, 2)) / w;
        return std::max(std::hypot(map(0, 0) - x * map(2, 0), map(1, 0) - y * map(2, 0)) / w,
                        std::hypot(map(0, 1) - x * map(2, 1), map(1, 1) - y * map(2, 1)) / w);
    };
    Scale scale{at({0, 0}), 0};
    for (const double x : {-card.width / 2, card.width / 2})
        for (const double y : {-card.height / 2, card.height / 2})
            scale.most = std::max(scale.most, at({x, y}));
    return scale;
}

/// A paint that turns the line from the top left to the bottom right corner into a gradient.
std::shared_ptr<const raster::Paint> hairlinePaint(const RoundedRect& card, const Placement& placement) {
    constexpr double bright = 0.3;
    constexpr double faint = 0.1;
    const double diagonal = std::atan2(card.width, -card.height) * 180 / std::numbers::pi;
    return std::make_shared<raster::GradientPaint>(
        raster::GradientPaint::Kind::linear, diagonal, card.width, card.height,
        std::vector<raster::Float4>{raster::premultiplied(1, 1, 1, bright),
                                    raster::premultiplied(1, 1, 1, faint)},
        placement.toLocal());
}

Placement moved(const Placement& placement, double x, double y) {
    Placement result = placement;
    const Homography move = Homography::translation(x, y);
    result.toOutput = result.toOutput * move;
    for (Homography& projection : result.projections)
        projection = projection * move;
    return result;
}

/// How far below the edge of what hides a card's middle, `frame` points inside its own, the glass sees. In
/// the corners that edge may lie a little nearer to the card's.
double reachBelow(const GlassPaint::Look& look, double frame) {
    const double nearest = 0.9 * frame;
    const double steep = look.rim > 0 ? std::max(1 - nearest / look.rim, 0.0) : 0;
    return std::max({look.bend - nearest, look.bend * steep * steep, 0.0});
}

/// The bevel of a polished card whose frame is `frame` points wide.
GlassPaint::Look polished(double frame, double veil) {
    GlassPaint::Look look;
    look.rim = std::clamp(0.8 * frame, 3.0, 14.0);
    look.bend = 1.4 * look.rim;
    look.veil = raster::premultiplied(1, 1, 1, veil);
    look.glow = 0.45;
    look.shade = 0.14;
    return look;
}

} // namespace

void GlassEffectModifier::Prepared::appendTo(std::vector<Layer>& under) && {
    if (pane) {
        Layer& layer = layers[pane->layer];
        if (auto backdrop = GlassBackdrop::create(*pane->window, pane->deviation, pane->reach, under)) {
            layer.paint = std::make_shared<GlassPaint>(std::move(backdrop), pane->window, layer.shape,
                                                       layer.placement, pane->look);
            layer.blend = Layer::Blend::replace;
        } else {
            layer.paint = std::make_shared<raster::SolidPaint>(pane->look.veil);
        }
    }
    std::ranges::move(layers, std::back_inserter(under));
}

GlassEffectModifier::Prepared GlassEffectModifier::prepare(const Card& card, QSize output) const {
    Prepared prepared;
    const RoundedRect shape{card.size.width(), card.size.height(), cornerRadius};
    const std::vector<Vec2> outline = shape.outline(card.placement);
    if (outline.empty() || output.isEmpty() || !card.placement.toLocal().isFinite() ||
        std::isnan(cornerRadius))
        return prepared;
    const Material made = properties(material);
    const auto seen = float(opacity > 0 ? std::min(opacity, 1.0) : 0);

    double frame = 12; // of a card that shows all over
    Coverage hidden;
    if (card.hidden) {
        hidden = Coverage(card.hidden->outline(card.placement));
        frame = std::min(shape.width - card.hidden->width, shape.height - card.hidden->height) / 2;
    }
    const auto window = std::make_shared<const GlassWindow>(Coverage(outline), std::move(hidden),
                                                            output.width(), output.height());
    GlassPaint::Look look;
    look.veil = raster::premultiplied(1, 1, 1, made.veil);
    if (made.isPolished)
        look = polished(frame, made.veil);
    constexpr double leastDeviation = 0.5; // pixels
    constexpr double largestDeviation = 200;
    constexpr double farthest = 1 << 20;
    const Scale scale = pixelsPerPoint(shape, card.placement.toOutput);
    const double deviation = std::clamp(made.blurRadius * scale.middle, leastDeviation, largestDeviation);
    const double reach = (card.hidden ? reachBelow(look, frame) : look.bend) * scale.most;

    const Placement dropped = moved(card.placement, 0, shadowOffset);
    const double margin = 2 * raster::ShadowPaint::reach * shadowRadius;
    Layer shadow{{shape.width + margin, shape.height + margin, 0},
                 {},
                 dropped,
                 std::make_shared<raster::ShadowPaint>(shape, shadowRadius, shadowOpacity, dropped),
                 {},
                 {}};
    prepared.layers.push_back(std::move(shadow));

    prepared.pane = Prepared::Pane{prepared.layers.size(), window, look, deviation,
                                   int(std::min(std::ceil(reach), farthest))};
    prepared.layers.push_back({shape, {}, card.placement, nullptr, {}, {}, seen});

    const RoundedRect inner{shape.width - hairlineWidth, shape.height - hairlineWidth,
                            std::max(0.0, shape.radius - hairlineWidth / 2)};
    const bool isThick = inner.width > 0 && inner.height > 0;
    prepared.layers.push_back({shape,
                               isThick ? std::optional(inner) : std::nullopt,
                               card.placement,
                               hairlinePaint(shape, card.placement),
                               {},
                               {}});
    return prepared;
}

} // namespace framora
