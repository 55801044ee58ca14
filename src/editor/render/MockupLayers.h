#pragma once

#include "editor/model/ScreenshotStyleConfig.h"
#include "editor/render/raster/Compositor.h"

#include <QSizeF>
#include <optional>
#include <vector>

namespace framora {

/// Where the screenshot with its mockup lies: the map from its own points, the origin in its middle, to
/// points about the canvas centre. Nothing when it is turned edge-on or a number is not finite. `dragOffset`
/// adds to the style's offset.
std::optional<raster::Placement> screenshotPlacement(QSizeF imageSize, const ScreenshotStyleConfig& config,
                                                     Size dragOffset);

/// The screenshot of `imageSize` points, painted with `picture`, and what frames it, from back to front.
/// `placement` maps its points to output pixels.
std::vector<raster::Layer> mockupLayers(QSizeF imageSize, const ScreenshotStyleConfig& config,
                                        std::shared_ptr<const raster::Paint> picture,
                                        const raster::Placement& placement);

} // namespace framora
