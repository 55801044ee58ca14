#include "editor/render/MockupLayers.h"

#include "editor/render/Composition.h"
#include "editor/render/RasterColor.h"
#include "editor/render/raster/GradientPaint.h"
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

/// A clear card: a faint white body and a hairline that is brighter at the top left.
void appendGlass(std::vector<Layer>& layers, const RoundedRect& shape, const raster::Placement& placement) {
    constexpr double body = 0.2;
    constexpr double hairline = 1; // points
    layers.push_back({shape,
                      {},
                      placement,
                      std::make_shared<raster::SolidPaint>(raster::premultiplied(1, 1, 1, body)),
                      {},
                      {}});
    const RoundedRect inner{shape.width - 2 * hairline, shape.height - 2 * hairline,
                            std::max(0.0, shape.radius - hairline)};
    const std::vector<raster::Float4> stops = {raster::premultiplied(1, 1, 1, 0.3),
                                               raster::premultiplied(1, 1, 1, 0.1)};
    layers.push_back(
        {shape,
         inner,
         placement,
         std::make_shared<raster::GradientPaint>(raster::GradientPaint::Kind::linear, 135, shape.width,
                                                 shape.height, stops, placement.toLocal()),
         {},
         {}});
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

std::vector<Layer> mockupLayers(QSizeF imageSize, const ScreenshotStyleConfig& config,
                                std::shared_ptr<const raster::Paint> picture,
                                const raster::Placement& placement) {
    const double padding = mockupPadding(config);
    std::vector<Layer> layers;
    if (config.showMockup && config.mockupStyle == MockupStyle::border)
        layers.push_back({card(imageSize, padding, config.borderRadius + padding / 2),
                          {},
                          placement,
                          std::make_shared<raster::SolidPaint>(rasterColor(config.borderColor)),
                          {},
                          {}});
    if (config.showMockup && config.mockupStyle == MockupStyle::glassEffect)
        appendGlass(layers, card(imageSize, padding, config.borderRadius + padding), placement);
    const double radius = config.showMockup ? config.borderRadius : 0;
    layers.push_back({card(imageSize, 0, radius), {}, placement, std::move(picture), {}, {}});
    return layers;
}

} // namespace framora
