#include "editor/render/MockupLayers.h"

#include "editor/render/Composition.h"
#include "editor/render/RasterColor.h"
#include "editor/render/raster/SolidPaint.h"

#include <algorithm>
#include <cmath>

namespace framora {
namespace {

using raster::Homography;
using raster::Layer;
using raster::RoundedRect;

/// A tilt this close to edge-on shows nothing.
bool isEdgeOn(double degrees) {
    return std::abs(raster::sinCos(degrees).cos) < 1e-9;
}

RoundedRect card(QSizeF imageSize, double padding, double radius) {
    return {imageSize.width() + 2 * padding, imageSize.height() + 2 * padding, radius};
}

/// The card of glass around the screenshot. What an opaque picture covers of it is never seen.
GlassEffectModifier::Prepared prepareGlass(QSizeF imageSize, const ScreenshotStyleConfig& config,
                                           const raster::Paint& picture, const raster::Placement& placement,
                                           QSize output) {
    const double padding = mockupPadding(config);
    const GlassEffectModifier glass{GlassMaterial::clear, config.borderRadius + padding};
    GlassEffectModifier::Card around;
    around.size = QSizeF(imageSize.width() + 2 * padding, imageSize.height() + 2 * padding);
    around.placement = placement;
    if (picture.isOpaque())
        around.hidden = card(imageSize, 0, config.borderRadius);
    return glass.prepare(around, output);
}

} // namespace

std::optional<raster::Placement> screenshotPlacement(QSizeF imageSize, const ScreenshotStyleConfig& config) {
    const double fit = screenshotScale(imageSize, config);
    Homography map = Homography::rotation(config.rotation) * Homography::scaling(config.scale, config.scale) *
                     Homography::scaling(fit, fit);
    raster::Placement placement;
    if (config.rotationX != 0 || config.rotationY != 0) {
        if (isEdgeOn(config.rotationX) || isEdgeOn(config.rotationY))
            return std::nullopt;
        const double padding = mockupPadding(config);
        const double eye = std::max(imageSize.width(), imageSize.height()) + 2 * padding;
        if (config.rotationX != 0) {
            map = Homography::tiltX(config.rotationX, eye) * map;
            placement.projections.push_back(map);
        }
        if (config.rotationY != 0) {
            map = Homography::tiltY(config.rotationY, eye) * map;
            placement.projections.push_back(map);
        }
    }
    placement.toOutput = map;
    if (!placement.toOutput.isFinite() || !placement.toOutput.inverse().isFinite())
        return std::nullopt;
    return placement;
}

GlassEffectModifier::Prepared prepareMockup(QSizeF imageSize, const ScreenshotStyleConfig& config,
                                            std::shared_ptr<const raster::Paint> picture,
                                            const raster::Placement& placement, QSize output) {
    GlassEffectModifier::Prepared mockup;
    if (config.showMockup && config.mockupStyle == MockupStyle::glassEffect)
        mockup = prepareGlass(imageSize, config, *picture, placement, output);
    std::vector<Layer>& layers = mockup.layers;
    const double padding = mockupPadding(config);
    if (config.showMockup && config.mockupStyle == MockupStyle::border)
        layers.push_back({card(imageSize, padding, config.borderRadius + padding / 2),
                          {},
                          placement,
                          std::make_shared<raster::SolidPaint>(rasterColor(config.borderColor)),
                          {},
                          {}});
    const double radius = config.showMockup ? config.borderRadius : 0;
    layers.push_back({card(imageSize, 0, radius), {}, placement, std::move(picture), {}, {}});
    return mockup;
}

} // namespace framora
