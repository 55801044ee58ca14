#include "editor/views/ScreenshotPreviewCanvas.h"

#include "editor/render/BackgroundDecoder.h"
#include "editor/render/MockupLayers.h"

#include <QCoreApplication>
#include <QCursor>
#include <QPointer>
#include <QQuickWindow>
#include <QSGImageNode>
#include <QThreadPool>
#include <algorithm>
#include <cmath>

namespace framora {
namespace {

/// How much ground stays visible beside a canvas that is larger than the item, in points.
constexpr double panMargin = 24.0;

} // namespace

ScreenshotPreviewCanvas::ScreenshotPreviewCanvas(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
    setAcceptedMouseButtons(Qt::LeftButton);
    setAcceptHoverEvents(true);
}

ScreenshotPreviewCanvas::~ScreenshotPreviewCanvas() = default;

void ScreenshotPreviewCanvas::setImage(const QImage& image) {
    if (m_image.cacheKey() == image.cacheKey())
        return;
    m_image = image;
    Q_EMIT imageChanged();
    update();
}

void ScreenshotPreviewCanvas::setConfig(const ScreenshotStyleConfig& config) {
    if (m_config == config && m_watchesBackground)
        return;
    m_config = config;
    Q_EMIT configChanged();
    if (!m_watchesBackground || m_backgroundURL != m_config.backgroundImageURL) {
        m_watchesBackground = true;
        m_backgroundURL = m_config.backgroundImageURL;
        loadBackground();
    }
    setPan(m_pan);
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

bool ScreenshotPreviewCanvas::isOverScreenshot(QPointF position) const {
    const QSizeF size = pointSize(m_image);
    const auto placement = screenshotPlacement(size, m_config);
    if (!placement)
        return false;
    const QPointF offset(m_config.screenshotOffset.width, m_config.screenshotOffset.height);
    const QPointF point = (position - canvasCentre()) / zoomFactor() - offset;
    const raster::Homography reverse = placement->toOutput.inverse();
    const raster::Vec2 inLayer = reverse.map({point.x(), point.y()});
    const double margin = mockupPadding(m_config);
    return std::abs(inLayer.x) <= size.width() / 2.0 + margin &&
           std::abs(inLayer.y) <= size.height() / 2.0 + margin;
}

QPointF ScreenshotPreviewCanvas::canvasCentre() const {
    return QPointF(width(), height()) / 2.0 + m_pan;
}

void ScreenshotPreviewCanvas::setDragOffset(QSizeF offset) {
    if (m_dragOffset == offset)
        return;
    m_dragOffset = offset;
    Q_EMIT dragOffsetChanged();
    update();
}

void ScreenshotPreviewCanvas::setDragging(bool dragging) {
    if (m_isDragging == dragging)
        return;
    m_isDragging = dragging;
    Q_EMIT isDraggingChanged();
}

void ScreenshotPreviewCanvas::mousePressEvent(QMouseEvent* event) {
    if (!isOverScreenshot(event->position())) {
        event->ignore();
        return;
    }
    setKeepMouseGrab(true);
    m_pressPosition = event->position();
    setDragging(true);
    setCursor(Qt::ClosedHandCursor);
}

void ScreenshotPreviewCanvas::mouseMoveEvent(QMouseEvent* event) {
    if (!m_isDragging)
        return;
    const QPointF translation = (event->position() - m_pressPosition) / zoomFactor();
    setDragOffset({translation.x(), translation.y()});
}

void ScreenshotPreviewCanvas::mouseReleaseEvent(QMouseEvent* event) {
    mouseMoveEvent(event);
    endDrag(true);
}

void ScreenshotPreviewCanvas::mouseUngrabEvent() {
    endDrag(false);
}

void ScreenshotPreviewCanvas::endDrag(bool commit) {
    if (!m_isDragging)
        return;
    if (commit)
        Q_EMIT screenshotOffsetChanged({m_config.screenshotOffset.width + m_dragOffset.width(),
                                        m_config.screenshotOffset.height + m_dragOffset.height()});
    setKeepMouseGrab(false);
    setDragOffset({0, 0});
    setDragging(false);
    setCursor(Qt::OpenHandCursor);
}

void ScreenshotPreviewCanvas::hoverMoveEvent(QHoverEvent* event) {
    if (!m_isDragging)
        setCursor(isOverScreenshot(event->position()) ? Qt::OpenHandCursor : Qt::ArrowCursor);
}

void ScreenshotPreviewCanvas::wheelEvent(QWheelEvent* event) {
    QPointF delta = event->pixelDelta();
    if (delta.isNull())
        delta = QPointF(event->angleDelta()) / 120.0 * 48.0;
    if (event->modifiers() & Qt::ShiftModifier)
        delta = delta.transposed();
    setPan(m_pan + delta);
}

void ScreenshotPreviewCanvas::setPan(QPointF pan) {
    const QSizeF canvas = canvasSize(pointSize(m_image), m_config) * zoomFactor();
    const auto clamped = [](double value, double content, double room) {
        const double limit = content <= room ? 0.0 : (content - room) / 2.0 + panMargin;
        return std::clamp(value, -limit, limit);
    };
    pan = {clamped(pan.x(), canvas.width(), width()), clamped(pan.y(), canvas.height(), height())};
    if (pan == m_pan)
        return;
    m_pan = pan;
    update();
}

void ScreenshotPreviewCanvas::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) {
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    setPan(m_pan);
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
    const QPointF centre = (canvasCentre() * ratio).toPoint();
    Composition composition;
    composition.image = m_image;
    composition.config = m_config;
    composition.dragOffset = {m_dragOffset.width(), m_dragOffset.height()};
    composition.loadedBackgroundImage = m_loadedBackgroundImage;
    m_front = 1 - m_front;
    m_rasterizer.drawInto(m_frames[m_front], composition, {size, zoomFactor() * ratio, centre});
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
