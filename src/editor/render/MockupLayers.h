#pragma once

#include "editor/model/ScreenshotStyleConfig.h"
#include "editor/render/GlassEffectModifier.h"
#include "editor/render/raster/Compositor.h"

#include <QSize>
#include <QSizeF>
#include <optional>
#include <vector>

namespace framora {

/// How the screenshot with its mockup is scaled, turned and tilted: the map from its own points, the origin
/// in its middle, to points about that middle. Nothing when it is turned edge-on or a number is not finite.
/// The style's offset is not in it.
std::optional<raster::Placement> screenshotPlacement(QSizeF imageSize, const ScreenshotStyleConfig& config);

/// The screenshot of `imageSize` points, painted with `picture`, and what frames it; the layers that it is to
/// lie on are seen through a frame of glass. `placement` maps its points to pixels of the output, whose size
/// is `output`.
GlassEffectModifier::Prepared prepareMockup(QSizeF imageSize, const ScreenshotStyleConfig& config,
                                            std::shared_ptr<const raster::Paint> picture,
                                            const raster::Placement& placement, QSize output);

} // namespace framora
