#include "editor/render/SceneLayer.h"

#include "editor/render/RasterColor.h"
#include "editor/render/raster/GradientPaint.h"
#include "editor/render/raster/ScenePaint.h"
#include "editor/render/raster/SolidPaint.h"

#include <cmath>
#include <numbers>

namespace framora {
namespace {

/// The scene's colours, faint, from the top left corner to the bottom right one; null without colours.
std::shared_ptr<const raster::Paint> tint(const QList<Color>& colors, QSizeF size,
                                          const raster::Homography& toCanvas) {
    constexpr double opacity = 0.3;
    std::vector<raster::Float4> stops;
    for (const Color& color : colors)
        stops.push_back(raster::premultiplied(color.red, color.green, color.blue, color.alpha * opacity));
    if (stops.empty())
        return nullptr;
    if (stops.size() == 1)
        return std::make_shared<raster::SolidPaint>(stops.front());
    const double degrees = std::atan2(size.width(), -size.height()) * 180 / std::numbers::pi;
    return std::make_shared<raster::GradientPaint>(raster::GradientPaint::Kind::linear, degrees, size.width(),
                                                   size.height(), std::move(stops), toCanvas);
}

} // namespace

std::optional<raster::Layer> sceneLayer(const ScreenshotStyleConfig& config, QSizeF size,
                                        const raster::Placement& placement, QSize output) {
    const double opacity = config.shadowSceneOpacity / 100;
    if (!config.selectedShadowScene || !(opacity > 0))
        return std::nullopt;
    const raster::Homography toCanvas = placement.toLocal();
    raster::Layer layer{{size.width(), size.height(), 0}, {}, placement, nullptr, {}, {}};
    layer.paint = std::make_shared<raster::ScenePaint>(
        tint(config.selectedShadowScene->colors, size, toCanvas), size.width(), size.height(), toCanvas,
        output.width(), output.height());
    layer.opacity = float(std::min(opacity, 1.0));
    layer.sharesEdge = true; // the canvas's
    if (config.shadowSceneMode == ShadowSceneMode::overlay)
        layer.blend = raster::Layer::Blend::overlay;
    return layer;
}

} // namespace framora
