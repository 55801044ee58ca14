#pragma once

#include "editor/model/ScreenshotStyleConfig.h"
#include "editor/render/raster/Homography.h"
#include "editor/render/raster/Paint.h"

#include <QSizeF>
#include <memory>

namespace framora {

/// The paint of a `color` background over a canvas of `size` points; null when nothing is chosen. What is
/// selected goes before what was picked: `selectedSolidColor`, `selectedGradient`, `selectedMagicPreset`,
/// then `customColor` unless it is clear, then `selectedGradientPreset`. Several colours are a linear
/// gradient; one that names no angle runs at 135 degrees.
std::shared_ptr<const raster::Paint> colorBackgroundPaint(const ScreenshotStyleConfig& config, QSizeF size,
                                                          const raster::Homography& toCanvas);

/// The paint of a `gradient` background.
std::shared_ptr<const raster::Paint> gradientBackgroundPaint(const SimpleGradientConfig& gradient,
                                                             QSizeF size, const raster::Homography& toCanvas);

} // namespace framora
