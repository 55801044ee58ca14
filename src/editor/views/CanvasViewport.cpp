#include "editor/views/CanvasViewport.h"

#include <algorithm>
#include <cmath>

namespace framora {
namespace {

double held(double value, double limit) {
    return std::clamp(value, -limit, limit);
}

} // namespace

void CanvasViewport::setRoom(QSizeF size) {
    m_room = size;
}

void CanvasViewport::setCanvas(QSizeF size) {
    m_canvas = size;
    keepMiddleCovered();
}

void CanvasViewport::setZoom(double factor) {
    if (!(factor > 0.0))
        return;
    m_pan *= factor / m_zoom;
    m_zoom = factor;
    if (content().width() <= m_room.width())
        m_pan.setX(0);
    if (content().height() <= m_room.height())
        m_pan.setY(0);
    keepMiddleCovered();
}

void CanvasViewport::zoomAbout(QPointF position, double factor) {
    if (!(factor > 0.0))
        return;
    const QPointF point = toCanvas(position);
    m_zoom = factor;
    m_pan += position - (canvasCentre() + point * m_zoom);
    keepMiddleCovered();
}

void CanvasViewport::panBy(QPointF distance) {
    // Zooming about a place near the edge leads further than panning does; from there the way is back only.
    const auto moved = [](double pan, double by, double size, double room) {
        const double end = size > room ? (size - room) / 2.0 + margin : 0.0;
        return held(pan + by, std::max(end, std::abs(pan)));
    };
    m_pan = {moved(m_pan.x(), distance.x(), content().width(), m_room.width()),
             moved(m_pan.y(), distance.y(), content().height(), m_room.height())};
}

void CanvasViewport::centre() {
    m_pan = {0, 0};
}

bool CanvasViewport::canPan() const {
    return content().width() > m_room.width() || content().height() > m_room.height() || !m_pan.isNull();
}

QPointF CanvasViewport::canvasCentre() const {
    return QPointF(m_room.width(), m_room.height()) / 2.0 + m_pan;
}

void CanvasViewport::keepMiddleCovered() {
    m_pan = {held(m_pan.x(), content().width() / 2.0), held(m_pan.y(), content().height() / 2.0)};
}

} // namespace framora
