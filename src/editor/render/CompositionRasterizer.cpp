#include "editor/render/CompositionRasterizer.h"

#include "editor/render/BackgroundPaint.h"
#include "editor/render/CheckerboardView.h"
#include "editor/render/ColorAdjustmentsModifier.h"
#include "editor/render/MockupLayers.h"
#include "editor/render/NoiseOverlayModifier.h"
#include "editor/render/RasterView.h"
#include "editor/render/raster/AdjustedPaint.h"
#include "editor/render/raster/HugePages.h"
#include "editor/render/raster/ParallelFor.h"
#include "editor/render/raster/PicturePaint.h"
#include "editor/render/raster/SolidPaint.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <new>

namespace framora {
namespace {

using raster::Homography;
using raster::Layer;
using Viewport = CompositionRasterizer::Viewport;

/// Where a layer lies that is placed about the canvas centre, and moved from there by `offset` points.
raster::Placement onViewport(raster::Placement placement, QPointF offset, const Viewport& viewport) {
    const double scale = viewport.pixelsPerPoint;
    placement.toOutput = Homography::scaling(scale, scale) * placement.toOutput;
    placement.move(viewport.canvasCentre.x() + offset.x() * scale,
                   viewport.canvasCentre.y() + offset.y() * scale);
    return placement;
}

ColorAdjustmentsModifier adjustments(const ScreenshotStyleConfig& config) {
    return {config.gradientConfig.saturation / 100, (config.gradientConfig.brightness - 100) / 100};
}

std::shared_ptr<const raster::Paint> makeColoredPaint(const ScreenshotStyleConfig& config, QSizeF size,
                                                      const Homography& toCanvas) {
    return config.backgroundType == BackgroundType::color
               ? colorBackgroundPaint(config, size, toCanvas)
               : gradientBackgroundPaint(config.gradientConfig, size, toCanvas);
}

bool isSize(QSizeF size) {
    return std::isfinite(size.width()) && std::isfinite(size.height()) && size.width() > 0 &&
           size.height() > 0;
}

bool isDrawable(const Viewport& viewport) {
    const QSize size = viewport.pixelSize;
    return size.width() > 0 && size.height() > 0 && size.width() <= CompositionRasterizer::longestSide &&
           size.height() <= CompositionRasterizer::longestSide &&
           qint64(size.width()) * size.height() <= CompositionRasterizer::mostPixels &&
           viewport.pixelsPerPoint > 0 && std::isfinite(viewport.pixelsPerPoint) &&
           std::isfinite(viewport.canvasCentre.x()) && std::isfinite(viewport.canvasCentre.y());
}

} // namespace

QImage CompositionRasterizer::draw(const Composition& composition, const Viewport& viewport) {
    QImage image;
    drawInto(image, composition, viewport);
    return image;
}

bool CompositionRasterizer::drawInto(QImage& target, const Composition& composition,
                                     const Viewport& viewport) {
    if (!isDrawable(viewport)) {
        target = {};
        return false;
    }
    if (target.size() != viewport.pixelSize || target.format() != QImage::Format_ARGB32_Premultiplied ||
        !target.isDetached()) {
        target = QImage(viewport.pixelSize, QImage::Format_ARGB32_Premultiplied);
        if (target.isNull())
            return false;
        raster::adviseHugePages(target.bits(), std::size_t(target.sizeInBytes()));
    }
    target.setDevicePixelRatio(1);
    try {
        raster::compose(mutableRasterView(target), layers(composition, viewport));
    } catch (const std::bad_alloc&) {
        target = {};
        return false;
    }
    return true;
}

bool CompositionRasterizer::drawInto(LivePicture& target, const Composition& composition,
                                     const Viewport& viewport) {
    if (isDrawable(viewport)) {
        try {
            return target.draw(viewport.pixelSize, layers(composition, viewport));
        } catch (const std::bad_alloc&) {
            // Of the layers.
        }
    }
    target.clear();
    return false;
}

std::vector<Layer> CompositionRasterizer::layers(const Composition& composition, const Viewport& viewport) {
    std::vector<Layer> layers;
    m_isCanvasOpaque = false;
    if (!isDrawable(viewport))
        return layers;
    std::vector<Layer> scene;
    std::vector<Layer> texts;
    GlassEffectModifier::Prepared mockup;
    const auto prepareBackground = [&] { appendBackground(layers, composition, viewport); };
    const auto prepareOthers = [&] {
        appendTexts(texts, composition, viewport);
        if (Screenshot picture = screenshot(composition, viewport); picture.paint)
            mockup = prepareMockup(pointSize(composition.image), composition.config, std::move(picture.paint),
                                   picture.placement, viewport.pixelSize);
        appendScene(scene, composition, viewport);
    };
    // Text is drawn by one thread alone, here, where its fonts are kept: beside a background that takes long.
    if (isBackgroundNew(composition)) {
        raster::callBeside(prepareOthers, prepareBackground);
    } else {
        prepareBackground();
        prepareOthers();
    }
    const bool isSceneOver = composition.config.shadowSceneMode == ShadowSceneMode::overlay;
    if (!isSceneOver)
        std::ranges::move(scene, std::back_inserter(layers));
    std::move(mockup).appendTo(layers);
    if (isSceneOver)
        std::ranges::move(scene, std::back_inserter(layers));
    std::ranges::move(texts, std::back_inserter(layers));
    // Glass shows what lies behind it blurred, also with the nothing beside the canvas.
    const auto takesAway = [](const Layer& layer) {
        return layer.blend == Layer::Blend::replace && !layer.paint->isOpaque();
    };
    m_isCanvasOpaque = m_isCanvasOpaque && std::ranges::none_of(layers, takesAway);
    return layers;
}

std::optional<Viewport> CompositionRasterizer::frameViewport(QSizeF size, double scale) {
    const double width = std::round(size.width() * scale);
    const double height = std::round(size.height() * scale);
    if (!(width >= 1 && height >= 1 && width <= longestSide && height <= longestSide))
        return {};
    // The frame's own middle: a size that is no whole number of pixels is cut evenly.
    const Viewport viewport{QSize(int(width), int(height)), scale, QPointF(width / 2, height / 2)};
    return isDrawable(viewport) ? std::optional(viewport) : std::nullopt;
}

QImage CompositionRasterizer::drawFrame(const Composition& composition, QSizeF size, double scale) {
    const std::optional<Viewport> viewport = frameViewport(size, scale);
    if (!viewport)
        return {};
    QImage image = draw(composition, *viewport);
    image.setDevicePixelRatio(scale);
    return image;
}

CompositionRasterizer::Prepared& CompositionRasterizer::prepared(Slot slot, const QImage& image) {
    Prepared& kept = m_prepared[slot];
    if (kept.pyramid && kept.key == image.cacheKey())
        return kept;
    if (slot == backgroundSlot)
        m_blur.clearFine();
    kept = {};
    kept.key = image.cacheKey();
    // Opaque pictures are as the kernels want them already; a copy of a large one would be felt.
    if (image.format() == QImage::Format_RGB32) {
        kept.pixels = image;
        kept.pyramid = std::make_shared<raster::PicturePyramid>(rasterView(kept.pixels));
        if (kept.pyramid->isOpaque())
            return kept;
    }
    kept.pixels = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    kept.pyramid =
        kept.pixels.isNull() ? nullptr : std::make_shared<raster::PicturePyramid>(rasterView(kept.pixels));
    return kept;
}

std::shared_ptr<const raster::Paint> CompositionRasterizer::picturePaint(Slot slot, const QImage& image,
                                                                         QSizeF size,
                                                                         const raster::Placement& placement,
                                                                         const Viewport& viewport) {
    Prepared& picture = prepared(slot, image);
    if (!picture.pyramid)
        return nullptr;
    const PaintPlace place{size.width(), size.height(), placement, viewport.pixelSize.width(),
                           viewport.pixelSize.height()};
    return picture.paint.get(place, [&] {
        return std::make_shared<raster::PicturePaint>(picture.pyramid, place.width, place.height, placement,
                                                      place.outputWidth, place.outputHeight, &picture.shades);
    });
}

std::shared_ptr<const raster::Paint> CompositionRasterizer::coloredPaint(const ScreenshotStyleConfig& config,
                                                                         QSizeF size,
                                                                         const Homography& toCanvas) {
    const ColorsKey key{BackgroundBlur::Identity::ofColors(config), size.width(), size.height(), toCanvas};
    return m_colors.get(key, [&] { return makeColoredPaint(config, size, toCanvas); });
}

bool CompositionRasterizer::isBackgroundNew(const Composition& composition) const {
    return composition.config.backgroundType == BackgroundType::image &&
           m_prepared[backgroundSlot].key != composition.backgroundImage().cacheKey();
}

void CompositionRasterizer::appendBackground(std::vector<Layer>& layers, const Composition& composition,
                                             const Viewport& viewport) {
    const ScreenshotStyleConfig& config = composition.config;
    const QSizeF size = canvasSize(pointSize(composition.image), config);
    const raster::Placement placement = onViewport({}, {}, viewport);
    if (!placement.toOutput.isFinite())
        return;
    const Homography reverse = placement.toLocal();
    Layer layer{{size.width(), size.height(), 0}, {}, placement, nullptr, {}, {}};
    if (!isSize(size))
        return;
    const double deviation =
        BackgroundBlur::deviation(config.gradientConfig.blurAmount, viewport.pixelsPerPoint);
    switch (config.backgroundType) {
    case BackgroundType::transparent:
        if (!composition.isRendering) {
            const Homography toCorner =
                Homography::translation(size.width() / 2, size.height() / 2) * reverse;
            layer.paint = m_checkerboard.get(toCorner, [&] { return CheckerboardView{}.paint(toCorner); });
        }
        break;
    case BackgroundType::color:
    case BackgroundType::gradient:
        layer.paint = coloredPaint(config, size, reverse);
        if (deviation > 0 && layer.paint && !dynamic_cast<const raster::SolidPaint*>(layer.paint.get()))
            layer.paint = blurredBackground(composition, viewport, deviation);
        else
            adjustments(config).apply(layer);
        break;
    case BackgroundType::image:
        if (composition.backgroundImage().isNull())
            break;
        layer.paint = deviation > 0 ? blurredBackground(composition, viewport, deviation)
                                    : picturePaint(backgroundSlot, composition.backgroundImage(), size,
                                                   placement, viewport);
        break;
    }
    if (!layer.paint)
        return;
    if (!composition.isRendering && config.backgroundType != BackgroundType::transparent)
        NoiseOverlayModifier{config.gradientConfig.noiseAmount / 100}.apply(layer, placement.originX,
                                                                            placement.originY);
    m_isCanvasOpaque = layer.paint->isOpaque();
    layers.push_back(std::move(layer));
}

std::shared_ptr<const raster::Paint> CompositionRasterizer::blurredBackground(const Composition& composition,
                                                                              const Viewport& viewport,
                                                                              double deviation) {
    const ScreenshotStyleConfig& config = composition.config;
    const QSizeF size = canvasSize(pointSize(composition.image), config);
    const double scale = viewport.pixelsPerPoint;
    const BackgroundBlur::Canvas canvas{viewport.canvasCentre.x() - size.width() * scale / 2,
                                        viewport.canvasCentre.y() - size.height() * scale / 2,
                                        size.width() * scale,
                                        size.height() * scale,
                                        viewport.pixelSize.width(),
                                        viewport.pixelSize.height()};
    if (config.backgroundType == BackgroundType::image) {
        const QImage& image = composition.backgroundImage();
        const Prepared& picture = prepared(backgroundSlot, image);
        if (!picture.pyramid)
            return nullptr;
        if (BackgroundBlur::isWide(canvas, deviation)) {
            const auto reduce = [&](const raster::BlurAxis& columns, const raster::BlurAxis& rows) {
                return raster::BlurGrid::reduced(picture.pyramid->picture(), columns, rows);
            };
            return m_blur.wide({{}, image.cacheKey()}, reduce, canvas, deviation,
                               picture.pyramid->isOpaque());
        }
        // What lies beyond the output is blurred into it.
        const int margin = BackgroundBlur::fineMargin(deviation);
        const auto sharp = [&] {
            raster::Placement placement = onViewport({}, {}, viewport);
            placement.move(margin, margin);
            return std::make_shared<raster::PicturePaint>(picture.pyramid, size.width(), size.height(),
                                                          placement, viewport.pixelSize.width() + 2 * margin,
                                                          viewport.pixelSize.height() + 2 * margin);
        };
        return m_blur.fine({{}, image.cacheKey()}, sharp, margin, canvas, deviation);
    }
    const auto adjusted =
        [&](std::shared_ptr<const raster::Paint> paint) -> std::shared_ptr<const raster::Paint> {
        const ColorAdjustmentsModifier modifier = adjustments(config);
        if (!modifier.isActive())
            return paint;
        return std::make_shared<raster::AdjustedPaint>(
            std::move(paint),
            raster::Layer::Adjustment{float(modifier.saturation), float(modifier.brightness)});
    };
    const auto plain = coloredPaint(config, size, onViewport({}, {}, viewport).toLocal());
    if (!BackgroundBlur::isWide(canvas, deviation))
        return m_blur.fine(
            BackgroundBlur::Identity::ofColors(config), [&] { return adjusted(plain); }, 0, canvas,
            deviation);
    const auto reduce = [&](const raster::BlurAxis& columns, const raster::BlurAxis& rows) {
        const Homography toCanvas =
            Homography::scaling(size.width() / columns.samples(), size.height() / rows.samples()) *
            Homography::translation(-columns.samples() / 2.0, -rows.samples() / 2.0);
        return raster::BlurGrid::reduced(*adjusted(makeColoredPaint(config, size, toCanvas)), columns, rows);
    };
    return m_blur.wide(BackgroundBlur::Identity::ofColors(config), reduce, canvas, deviation,
                       plain->isOpaque());
}

void CompositionRasterizer::appendScene(std::vector<Layer>& layers, const Composition& composition,
                                        const Viewport& viewport) {
    const QSizeF size = canvasSize(pointSize(composition.image), composition.config);
    const raster::Placement placement = onViewport({}, {}, viewport);
    if (!isSize(size) || !placement.toOutput.isFinite())
        return;
    if (auto layer = m_scene.layer(composition.config, size, placement, viewport.pixelSize))
        layers.push_back(std::move(*layer));
}

void CompositionRasterizer::appendTexts(std::vector<Layer>& layers, const Composition& composition,
                                        const Viewport& viewport) {
    const QSizeF size = canvasSize(pointSize(composition.image), composition.config);
    if (!isSize(size))
        return;
    const double scale = viewport.pixelsPerPoint;
    const QPointF origin =
        viewport.canvasCentre - QPointF(size.width() * scale / 2, size.height() * scale / 2);
    for (Layer& layer : m_texts.layers(composition.config.textOverlays, {origin, scale, viewport.pixelSize}))
        layers.push_back(std::move(layer));
}

CompositionRasterizer::Screenshot CompositionRasterizer::screenshot(const Composition& composition,
                                                                    const Viewport& viewport) {
    if (composition.image.isNull())
        return {};
    const QSizeF size = pointSize(composition.image);
    const ScreenshotStyleConfig& config = composition.config;
    const auto aboutCentre = screenshotPlacement(size, config);
    if (!aboutCentre)
        return {};
    const QPointF offset(config.screenshotOffset.width + composition.dragOffset.width,
                         config.screenshotOffset.height + composition.dragOffset.height);
    const raster::Placement placement = onViewport(*aboutCentre, offset, viewport);
    if (!placement.toOutput.isFinite() || !placement.toOutput.inverse().isFinite())
        return {};
    return {placement, picturePaint(screenshotSlot, composition.image, size, placement, viewport)};
}

} // namespace framora
