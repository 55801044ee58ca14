#include "editor/views/ScreenshotPreviewCanvas.h"

#include "editor/render/BackgroundDecoder.h"

#include <QCoreApplication>
#include <QPointer>
#include <QQuickWindow>
#include <QSGImageNode>
#include <QThreadPool>

namespace framora {

ScreenshotPreviewCanvas::ScreenshotPreviewCanvas(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
    setAcceptedMouseButtons(Qt::LeftButton | Qt::MiddleButton);
    setAcceptHoverEvents(true);
    setAcceptTouchEvents(true);
    setActiveFocusOnTab(true);
}

ScreenshotPreviewCanvas::~ScreenshotPreviewCanvas() = default;

void ScreenshotPreviewCanvas::setImage(const QImage& image) {
    if (m_image.cacheKey() == image.cacheKey())
        return;
    m_image = image;
    m_viewport.setCanvas(canvasSize(pointSize(m_image), m_config));
    Q_EMIT imageChanged();
    update();
}

void ScreenshotPreviewCanvas::setConfig(const ScreenshotStyleConfig& config) {
    if (m_config == config && m_watchesBackground)
        return;
    const double zoom = m_config.zoom;
    m_config = config;
    m_viewport.setCanvas(canvasSize(pointSize(m_image), m_config));
    if (m_config.zoom != zoom) {
        if (m_zoomAnchor)
            m_viewport.zoomAbout(*m_zoomAnchor, m_config.zoom / 100.0);
        else
            m_viewport.setZoom(m_config.zoom / 100.0);
    }
    Q_EMIT configChanged();
    if (!m_watchesBackground || m_backgroundURL != m_config.backgroundImageURL) {
        m_watchesBackground = true;
        m_backgroundURL = m_config.backgroundImageURL;
        loadBackground();
    }
    update();
}

void ScreenshotPreviewCanvas::loadBackground() {
    m_loadedBackgroundImage = {};
    if (!m_backgroundURL)
        return;
    QThreadPool::globalInstance()->start([canvas = QPointer(this), url = *m_backgroundURL] {
        const QImage image = BackgroundDecoder::decode(url);
        QMetaObject::invokeMethod(QCoreApplication::instance(), [canvas, url, image] {
            // A picture that comes after the user has chosen another one is of no use any more.
            if (!canvas || canvas->m_backgroundURL != url)
                return;
            canvas->m_loadedBackgroundImage = image;
            canvas->update();
            Q_EMIT canvas->backgroundLoaded();
        });
    });
}

void ScreenshotPreviewCanvas::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) {
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    m_viewport.setRoom(newGeometry.size());
    update();
}

void ScreenshotPreviewCanvas::itemChange(ItemChange change, const ItemChangeData& data) {
    if (change == ItemDevicePixelRatioHasChanged)
        update();
    QQuickItem::itemChange(change, data);
}

void ScreenshotPreviewCanvas::drawFrame() {
    const double ratio = window()->effectiveDevicePixelRatio();
    const QSize size = (QSizeF(width(), height()) * ratio).toSize();
    // The canvas centre on a whole pixel, so that a canvas at 100 % is drawn pixel for pixel.
    const QPointF centre = (m_viewport.canvasCentre() * ratio).toPoint();
    Composition composition;
    composition.image = m_image;
    composition.config = m_config;
    composition.dragOffset = {m_dragOffset.width(), m_dragOffset.height()};
    composition.loadedBackgroundImage = m_loadedBackgroundImage;
    m_front = 1 - m_front;
    m_rasterizer.drawInto(m_frames[m_front], composition, {size, m_viewport.zoom() * ratio, centre});
}

QSGNode* ScreenshotPreviewCanvas::updatePaintNode(QSGNode* node, UpdatePaintNodeData*) {
    auto* imageNode = static_cast<QSGImageNode*>(node);
    if (width() < 1 || height() < 1) {
        delete imageNode;
        return nullptr;
    }
    drawFrame();
    if (m_frames[m_front].isNull()) {
        delete imageNode;
        return nullptr;
    }
    if (!imageNode) {
        imageNode = window()->createImageNode();
        imageNode->setOwnsTexture(true);
        imageNode->setFiltering(QSGTexture::Nearest);
    }
    imageNode->setTexture(
        window()->createTextureFromImage(m_frames[m_front], QQuickWindow::TextureHasAlphaChannel));
    imageNode->setRect(boundingRect());
    imageNode->markDirty(QSGNode::DirtyMaterial);
    return imageNode;
}

} // namespace framora
