#pragma once

#include "editor/model/ScreenshotStyleConfig.h"
#include "editor/render/raster/Compositor.h"

#include <QSizeF>
#include <optional>
#include <vector>

namespace framora {

/// How the screenshot with its mockup is scaled, turned and tilted: the map from its own points, the origin
/// in its middle, to points about that middle. Nothing when it is turned edge-on or a number is not finite.
/// The style's offset is not in it.
std::optional<raster::Placement> screenshotPlacement(QSizeF imageSize, const ScreenshotStyleConfig& config);

/// The screenshot of `imageSize` points, painted with `picture`, and what frames it, from back to front.
/// `placement` maps its points to output pixels.
std::vector<raster::Layer> mockupLayers(QSizeF imageSize, const ScreenshotStyleConfig& config,
                                        std::shared_ptr<const raster::Paint> picture,
                                        const raster::Placement& placement);

} // namespace framora
