#include "editor/render/ScreenshotRenderer.h"

#include "editor/render/BackgroundDecoder.h"
#include "editor/render/CompositionRasterizer.h"

#include <QCoreApplication>
#include <QThread>

namespace framora {

namespace {

QSizeF exportFrame(const QImage& image, const ScreenshotStyleConfig& config) {
    return outputFrame(pointSize(image), config);
}

} // namespace

std::optional<Composition> exportComposition(const QImage& image, const ScreenshotStyleConfig& config) {
    if (image.isNull() || !CompositionRasterizer::frameViewport(exportFrame(image, config), exportScale))
        return {};
    Composition composition;
    composition.image = image;
    composition.config = config;
    composition.config.zoom = 100;
    composition.isRendering = true;
    if (config.backgroundType == BackgroundType::image && config.backgroundImageURL)
        composition.preloadedBackgroundImage = BackgroundDecoder::decode(*config.backgroundImageURL);
    return composition;
}

QImage renderComposition(const QImage& image, const ScreenshotStyleConfig& config) {
    const std::optional<Composition> composition = exportComposition(image, config);
    return composition
               ? CompositionRasterizer().drawFrame(*composition, exportFrame(image, config), exportScale)
               : QImage();
}

QImage ScreenshotRenderer::render() const {
    const QCoreApplication* application = QCoreApplication::instance();
    if (application && QThread::currentThread() != application->thread())
        qFatal("ScreenshotRenderer.cpp: render() is called off the main thread");
    return renderComposition(m_image, m_config);
}

} // namespace framora
