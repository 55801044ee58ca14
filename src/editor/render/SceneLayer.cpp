#include "editor/render/SceneLayer.h"

#include "editor/render/RasterColor.h"
#include "editor/render/raster/ScenePaint.h"

#include <algorithm>

namespace framora {
namespace {

/// The scene's colours, faint.
std::vector<raster::Float4> tint(const QList<Color>& colors) {
    constexpr double opacity = 0.3;
    std::vector<raster::Float4> stops;
    for (const Color& color : colors)
        stops.push_back(raster::premultiplied(color.red, color.green, color.blue, color.alpha * opacity));
    return stops;
}

} // namespace

std::optional<raster::Layer> SceneLayer::layer(const ScreenshotStyleConfig& config, QSizeF size,
                                               const raster::Placement& placement, QSize output) {
    const double opacity = std::min(config.shadowSceneOpacity / 100, 1.0);
    if (!config.selectedShadowScene || !(opacity > 0))
        return std::nullopt;
    raster::Layer layer{{size.width(), size.height(), 0}, {}, placement, nullptr, {}, {}};
    const Key key{config.selectedShadowScene->colors,
                  opacity,
                  size.width(),
                  size.height(),
                  placement.toLocal(),
                  output};
    layer.paint = m_paint.get(key, [&key] {
        return std::make_shared<raster::ScenePaint>(raster::ScenePaint::Look{tint(key.colors), key.opacity},
                                                    key.width, key.height, key.toCanvas, key.output.width(),
                                                    key.output.height());
    });
    layer.sharesEdge = true; // the canvas's
    if (config.shadowSceneMode == ShadowSceneMode::overlay)
        layer.blend = raster::Layer::Blend::overlay;
    return layer;
}

} // namespace framora
