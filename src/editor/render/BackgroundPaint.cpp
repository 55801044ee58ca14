#include "editor/render/BackgroundPaint.h"

#include "editor/render/RasterColor.h"
#include "editor/render/raster/GradientPaint.h"
#include "editor/render/raster/SolidPaint.h"

namespace framora {
namespace {

using raster::GradientPaint;

std::shared_ptr<const raster::Paint> linearPaint(const QList<Color>& colors, double degrees, QSizeF size,
                                                 const raster::Homography& toCanvas) {
    std::vector<raster::Float4> stops;
    for (const Color& color : colors)
        stops.push_back(rasterColor(color));
    if (stops.size() == 1)
        return std::make_shared<raster::SolidPaint>(stops.front());
    return std::make_shared<GradientPaint>(GradientPaint::Kind::linear, degrees, size.width(), size.height(),
                                           std::move(stops), toCanvas);
}

GradientPaint::Kind paintKind(GradientStyle style) {
    switch (style) {
    case GradientStyle::linear:
        return GradientPaint::Kind::linear;
    case GradientStyle::radial:
        return GradientPaint::Kind::radial;
    case GradientStyle::angular:
        return GradientPaint::Kind::angular;
    }
    return GradientPaint::Kind::linear;
}

} // namespace

std::shared_ptr<const raster::Paint> colorBackgroundPaint(const ScreenshotStyleConfig& config, QSizeF size,
                                                          const raster::Homography& toCanvas) {
    constexpr double usualAngle = 135;
    if (config.selectedSolidColor)
        return linearPaint({config.selectedSolidColor->color}, 0, size, toCanvas);
    if (config.selectedGradient && !config.selectedGradient->colors.isEmpty())
        return linearPaint(config.selectedGradient->colors, config.selectedGradient->angle, size, toCanvas);
    if (config.selectedMagicPreset && !config.selectedMagicPreset->colors.isEmpty())
        return linearPaint(config.selectedMagicPreset->colors, usualAngle, size, toCanvas);
    if (config.customColor.alpha > 0)
        return linearPaint({config.customColor}, 0, size, toCanvas);
    if (config.selectedGradientPreset) {
        SimpleGradientConfig preset = config.selectedGradientPreset->config;
        preset.style = GradientStyle::linear;
        return gradientBackgroundPaint(preset, size, toCanvas);
    }
    return nullptr;
}

std::shared_ptr<const raster::Paint> gradientBackgroundPaint(const SimpleGradientConfig& gradient,
                                                             QSizeF size,
                                                             const raster::Homography& toCanvas) {
    std::vector<raster::Float4> stops = {rasterColor(gradient.color1), rasterColor(gradient.color2)};
    if (gradient.useThreeColors)
        stops.push_back(rasterColor(gradient.color3));
    return std::make_shared<GradientPaint>(paintKind(gradient.style), gradient.angle, size.width(),
                                           size.height(), std::move(stops), toCanvas);
}

} // namespace framora
