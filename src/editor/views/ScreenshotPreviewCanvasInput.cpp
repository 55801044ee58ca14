// What the preview does with pointer, fingers and keys; what it draws is in ScreenshotPreviewCanvas.cpp.

#include "editor/render/MockupLayers.h"
#include "editor/views/ScreenshotPreviewCanvas.h"

#include <QCursor>
#include <QPointingDevice>
#include <algorithm>
#include <cmath>

namespace framora {
namespace {

/// One notch of a wheel, as one press of a zoom button.
constexpr double notchZoom = 1.2;
constexpr double notchAngle = 120.0;
/// How far one notch pans, in points.
constexpr double notchDistance = 48.0;

/// Fingers on a touchpad move things; a wheel, however finely it reports, turns.
bool comesFromFingers(const QWheelEvent& event) {
    return !event.pixelDelta().isNull() &&
           (event.phase() != Qt::NoScrollPhase ||
            (event.device() && event.device()->type() == QInputDevice::DeviceType::TouchPad));
}

} // namespace

bool ScreenshotPreviewCanvas::isOverScreenshot(QPointF position) const {
    const QSizeF size = pointSize(m_image);
    const auto placement = screenshotPlacement(size, m_config);
    if (!placement)
        return false;
    const QPointF offset(m_config.screenshotOffset.width, m_config.screenshotOffset.height);
    const QPointF point = m_viewport.toCanvas(position) - offset;
    const raster::Homography reverse = placement->toOutput.inverse();
    const raster::Vec2 inLayer = reverse.map({point.x(), point.y()});
    // Beyond the horizon of a tilt nothing is drawn.
    if (!std::ranges::all_of(placement->projections,
                             [&](const raster::Homography& map) { return map.depth(inLayer) > 0; }))
        return false;
    const double margin = mockupPadding(m_config);
    return std::abs(inLayer.x) <= size.width() / 2.0 + margin &&
           std::abs(inLayer.y) <= size.height() / 2.0 + margin;
}

// The screenshot's drag.

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

bool ScreenshotPreviewCanvas::beginDrag(QPointF position) {
    if (!isOverScreenshot(position))
        return false;
    // In canvas points, so that the drag also outlasts a zoom.
    m_pressPoint = m_viewport.toCanvas(position);
    setDragging(true);
    updateCursor();
    return true;
}

void ScreenshotPreviewCanvas::dragTo(QPointF position) {
    if (!m_isDragging)
        return;
    const QPointF translation = m_viewport.toCanvas(position) - m_pressPoint;
    setDragOffset({translation.x(), translation.y()});
}

void ScreenshotPreviewCanvas::endDrag(bool commit) {
    if (!m_isDragging)
        return;
    if (commit)
        Q_EMIT screenshotOffsetChanged({m_config.screenshotOffset.width + m_dragOffset.width(),
                                        m_config.screenshotOffset.height + m_dragOffset.height()});
    setDragOffset({0, 0});
    setDragging(false);
    updateCursor();
}

bool ScreenshotPreviewCanvas::cancelDrag() {
    const bool runs = m_isDragging || m_panPosition;
    endDrag(false);
    endPan();
    return runs;
}

// The canvas under the view.

void ScreenshotPreviewCanvas::beginPan(QPointF position) {
    if (!m_viewport.canPan())
        return;
    m_panPosition = position;
    updateCursor();
}

void ScreenshotPreviewCanvas::endPan() {
    if (!m_panPosition)
        return;
    m_panPosition.reset();
    updateCursor();
}

void ScreenshotPreviewCanvas::panBy(QPointF distance) {
    m_viewport.panBy(distance);
    update();
}

void ScreenshotPreviewCanvas::zoomAbout(QPointF position, double factor) {
    m_zoomAnchor = position;
    Q_EMIT zoomRequested(m_config.zoom * factor);
    m_zoomAnchor.reset();
}

void ScreenshotPreviewCanvas::centre() {
    m_viewport.centre();
    update();
}

void ScreenshotPreviewCanvas::setPanKeyHeld(bool held) {
    if (m_panKeyHeld == held)
        return;
    m_panKeyHeld = held;
    updateCursor();
    Q_EMIT panKeyHeldChanged();
}

void ScreenshotPreviewCanvas::updateCursor() {
    if (m_isDragging || m_panPosition)
        setCursor(Qt::ClosedHandCursor);
    else if ((m_panKeyHeld && m_viewport.canPan()) || isOverScreenshot(m_pointer))
        setCursor(Qt::OpenHandCursor);
    else
        setCursor(Qt::ArrowCursor);
}

// The pointer.

void ScreenshotPreviewCanvas::mousePressEvent(QMouseEvent* event) {
    m_pointer = event->position();
    if (m_button != Qt::NoButton)
        return; // A second button changes nothing.
    forceActiveFocus(Qt::MouseFocusReason);
    setVisualFocus(false);
    if (event->button() == Qt::MiddleButton || m_panKeyHeld)
        beginPan(event->position());
    else if (!beginDrag(event->position())) {
        event->ignore();
        return;
    }
    m_button = event->button();
    setKeepMouseGrab(true);
}

void ScreenshotPreviewCanvas::mouseMoveEvent(QMouseEvent* event) {
    m_pointer = event->position();
    dragTo(event->position());
    if (m_panPosition)
        panBy(event->position() - std::exchange(*m_panPosition, event->position()));
}

void ScreenshotPreviewCanvas::mouseReleaseEvent(QMouseEvent* event) {
    mouseMoveEvent(event);
    if (event->button() != m_button)
        return;
    m_button = Qt::NoButton;
    setKeepMouseGrab(false);
    endDrag(true);
    endPan();
}

void ScreenshotPreviewCanvas::mouseUngrabEvent() {
    m_button = Qt::NoButton;
    setKeepMouseGrab(false);
    cancelDrag();
}

void ScreenshotPreviewCanvas::hoverMoveEvent(QHoverEvent* event) {
    m_pointer = event->position();
    updateCursor();
}

void ScreenshotPreviewCanvas::wheelEvent(QWheelEvent* event) {
    const bool zooms = event->modifiers() & Qt::ControlModifier;
    if (comesFromFingers(*event) && !zooms) {
        panBy(event->pixelDelta());
        return;
    }
    const QPointF notches = QPointF(event->angleDelta()) / notchAngle;
    if (!zooms && (event->modifiers() & Qt::ShiftModifier || notches.y() == 0.0))
        panBy({(notches.x() + notches.y()) * notchDistance, 0});
    else
        zoomAbout(event->position(), std::pow(notchZoom, notches.y()));
}

// Fingers.

void ScreenshotPreviewCanvas::pinch(const Pinch& now) {
    if (m_pinch) {
        panBy(now.middle - m_pinch->middle);
        if (m_pinch->distance > 0 && now.distance > 0)
            zoomAbout(now.middle, now.distance / m_pinch->distance);
    } else {
        cancelDrag();
    }
    m_pinch = now;
}

void ScreenshotPreviewCanvas::touchEvent(QTouchEvent* event) {
    const QList<QEventPoint>& points = event->points();
    if (event->type() == QEvent::TouchCancel) {
        touchUngrabEvent();
    } else if (points.size() >= 2) {
        setKeepTouchGrab(true);
        const QPointF a = points[0].position();
        const QPointF b = points[1].position();
        pinch({(a + b) / 2.0, std::hypot(a.x() - b.x(), a.y() - b.y())});
        if (event->touchPointStates() & QEventPoint::Released)
            m_pinch.reset(); // The finger that stays moves nothing.
    } else if (!points.isEmpty()) {
        const QPointF position = points[0].position();
        switch (points[0].state()) {
        case QEventPoint::Pressed:
            forceActiveFocus(Qt::MouseFocusReason);
            setKeepTouchGrab(beginDrag(position));
            break;
        case QEventPoint::Released:
            dragTo(position);
            endDrag(true);
            m_pinch.reset();
            break;
        default:
            dragTo(position);
        }
    }
    event->accept();
}

void ScreenshotPreviewCanvas::touchUngrabEvent() {
    m_pinch.reset();
    cancelDrag();
}

bool ScreenshotPreviewCanvas::event(QEvent* event) {
    if (event->type() == QEvent::NativeGesture) {
        const auto& gesture = static_cast<const QNativeGestureEvent&>(*event);
        if (gesture.gestureType() == Qt::ZoomNativeGesture)
            zoomAbout(mapFromScene(gesture.scenePosition()), 1.0 + gesture.value());
        event->setAccepted(gesture.gestureType() == Qt::ZoomNativeGesture);
        return event->isAccepted();
    }
    return QQuickItem::event(event);
}

// Keys.

void ScreenshotPreviewCanvas::keyPressEvent(QKeyEvent* event) {
    const auto modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const double step = modifiers == Qt::ShiftModifier ? 10.0 : 1.0;
    QSizeF distance;
    switch (event->key()) {
    case Qt::Key_Left:
        distance = {-step, 0};
        break;
    case Qt::Key_Right:
        distance = {step, 0};
        break;
    case Qt::Key_Up:
        distance = {0, -step};
        break;
    case Qt::Key_Down:
        distance = {0, step};
        break;
    default:
        event->ignore();
        return;
    }
    if (modifiers != Qt::NoModifier && modifiers != Qt::ShiftModifier)
        event->ignore();
    else if (!m_isDragging)
        Q_EMIT nudged(distance);
}

void ScreenshotPreviewCanvas::setVisualFocus(bool shown) {
    if (m_visualFocus == shown)
        return;
    m_visualFocus = shown;
    Q_EMIT visualFocusChanged();
}

void ScreenshotPreviewCanvas::focusInEvent(QFocusEvent* event) {
    QQuickItem::focusInEvent(event);
    setVisualFocus(event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason);
}

void ScreenshotPreviewCanvas::focusOutEvent(QFocusEvent* event) {
    QQuickItem::focusOutEvent(event);
    setVisualFocus(false);
}

} // namespace framora
