#pragma once

#include "editor/render/Composition.h"
#include "editor/render/raster/Compositor.h"

#include <QSize>
#include <optional>

namespace framora {

/// The style's shadow scene over the canvas of `size` points, which lies in the output as `placement` says;
/// none where the style has none or hides it.
std::optional<raster::Layer> sceneLayer(const ScreenshotStyleConfig& config, QSizeF size,
                                        const raster::Placement& placement, QSize output);

} // namespace framora
