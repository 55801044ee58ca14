#include "editor/views/ScreenshotPreviewCanvas.h"

#include "editor/render/BackgroundDecoder.h"
#include "editor/views/CanvasEdge.h"
#include "editor/views/CanvasFrame.h"

#include <QCoreApplication>
#include <QPointer>
#include <QQuickWindow>
#include <QThreadPool>
#include <cmath>

namespace framora {
namespace {

/// The middle nearest to `middle` about which a canvas of `length` pixels is drawn pixel for pixel at 100 %:
/// on a pixel's edge, and in a pixel where the length is odd.
double onPixels(double middle, double length) {
    const double whole = std::round(length);
    const bool isOdd = std::abs(length - whole) < 1e-6 && std::fmod(whole, 2) == 1;
    return isOdd ? std::floor(middle) + 0.5 : std::round(middle);
}

} // namespace

ScreenshotPreviewCanvas::ScreenshotPreviewCanvas(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
    setAcceptedMouseButtons(Qt::LeftButton | Qt::MiddleButton);
    setAcceptHoverEvents(true);
    setAcceptTouchEvents(true);
    setActiveFocusOnTab(true);
}

ScreenshotPreviewCanvas::~ScreenshotPreviewCanvas() {
    m_backgroundLoading.request_stop();
}

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

void ScreenshotPreviewCanvas::setDark(bool dark) {
    if (m_isDark == dark)
        return;
    m_isDark = dark;
    Q_EMIT darkChanged();
    update();
}

void ScreenshotPreviewCanvas::loadBackground() {
    m_loadedBackgroundImage = {};
    // An earlier one is not waited for: neither by this one nor by the program's end.
    m_backgroundLoading.request_stop();
    m_backgroundLoading = {};
    if (!m_backgroundURL)
        return;
    QThreadPool::globalInstance()->start(
        [canvas = QPointer(this), url = *m_backgroundURL, stop = m_backgroundLoading.get_token()] {
            const QImage image = BackgroundDecoder::decode(url, stop);
            if (stop.stop_requested())
                return;
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
    Composition composition;
    composition.image = m_image;
    composition.config = m_config;
    composition.dragOffset = {m_dragOffset.width(), m_dragOffset.height()};
    composition.loadedBackgroundImage = m_loadedBackgroundImage;
    m_rasterizer.drawInto(m_frame, composition, {size, m_viewport.zoom() * ratio, centrePixel()});
}

QPointF ScreenshotPreviewCanvas::centrePixel() const {
    const double ratio = window()->effectiveDevicePixelRatio();
    const QPointF middle = m_viewport.canvasCentre() * ratio;
    const QSizeF canvas = m_viewport.content() * ratio;
    return {onPixels(middle.x(), canvas.width()), onPixels(middle.y(), canvas.height())};
}

QRectF ScreenshotPreviewCanvas::canvasPlace() const {
    const double ratio = window()->effectiveDevicePixelRatio();
    QRectF place({0, 0}, m_viewport.content() * ratio);
    place.moveCenter(centrePixel());
    return place;
}

QRect ScreenshotPreviewCanvas::opaquePixels() const {
    if (!m_rasterizer.isCanvasOpaque())
        return {};
    const QRectF place = canvasPlace() & QRectF(m_frame.rect());
    const QPoint topLeft(int(std::ceil(place.left())), int(std::ceil(place.top())));
    return {topLeft, QSize(int(std::floor(place.right())) - topLeft.x(),
                           int(std::floor(place.bottom())) - topLeft.y())};
}

QSGNode* ScreenshotPreviewCanvas::updatePaintNode(QSGNode* node, UpdatePaintNodeData*) {
    if (width() < 1 || height() < 1) {
        delete node;
        return nullptr;
    }
    drawFrame();
    if (m_frame.isNull()) {
        delete node;
        return nullptr;
    }
    // The edge under the frame, whose screenshot may reach beyond the canvas.
    if (!node) {
        node = new QSGNode;
        node->appendChildNode(new CanvasEdge);
        node->appendChildNode(new CanvasFrame(*window()));
    }
    const double ratio = window()->effectiveDevicePixelRatio();
    static_cast<CanvasEdge*>(node->firstChild())
        ->place(*window(), canvasPlace(), m_frame.rect().size(), ratio, m_isDark);
    static_cast<CanvasFrame*>(node->lastChild())->show(*window(), m_frame, opaquePixels(), ratio);
    return node;
}

} // namespace framora
