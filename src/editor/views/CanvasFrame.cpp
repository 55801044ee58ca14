#include "editor/views/CanvasFrame.h"

#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGTexture>
#include <algorithm>
#include <utility>

namespace framora {

CanvasFrame::CanvasFrame(QQuickWindow& window) {
    for (std::unique_ptr<QSGImageNode>& part : m_parts) {
        part.reset(window.createImageNode());
        part->setFlag(QSGNode::OwnedByParent, false);
        part->setFiltering(QSGTexture::Nearest);
    }
}

CanvasFrame::~CanvasFrame() = default;

QRect CanvasFrame::used(const QImage& frame, QRect part) {
    part &= frame.rect();
    int left = part.x() + part.width();
    int right = part.x();
    int top = part.y() + part.height();
    int bottom = part.y();
    for (int y = part.y(); y < part.y() + part.height(); ++y) {
        const QRgb* row = reinterpret_cast<const QRgb*>(frame.constScanLine(y));
        const QRgb* const end = row + part.x() + part.width();
        const QRgb* const first = std::find_if(row + part.x(), end, [](QRgb pixel) { return pixel != 0; });
        if (first == end)
            continue;
        const QRgb* last = end;
        while (last[-1] == 0)
            --last;
        left = std::min(left, int(first - row));
        right = std::max(right, int(last - row));
        top = std::min(top, y);
        bottom = y + 1;
    }
    return left < right ? QRect(left, top, right - left, bottom - top) : QRect();
}

void CanvasFrame::show(QQuickWindow& window, const QImage& frame, const QRect& opaque, double ratio) {
    const QRect whole = frame.rect();
    const QRect inside = opaque & whole;
    const int right = inside.x() + inside.width();
    const int bottom = inside.y() + inside.height();
    const std::array<QRect, 5> places = {
        inside,
        // Without an inside all of it is above.
        used(frame, QRect(0, 0, whole.width(), inside.isEmpty() ? whole.height() : inside.y())),
        inside.isEmpty() ? QRect() : used(frame, QRect(0, bottom, whole.width(), whole.height() - bottom)),
        used(frame, QRect(0, inside.y(), inside.x(), inside.height())),
        inside.isEmpty() ? QRect()
                         : used(frame, QRect(right, inside.y(), whole.width() - right, inside.height())),
    };

    // The same memory as pixels without alpha.
    const QImage solid(frame.constScanLine(inside.y()) + std::ptrdiff_t(inside.x()) * 4, inside.width(),
                       inside.height(), frame.bytesPerLine(), QImage::Format_RGB32);
    std::unique_ptr<QSGTexture> insideTexture(
        inside.isEmpty() ? nullptr : window.createTextureFromImage(solid, QQuickWindow::TextureIsOpaque));
    std::unique_ptr<QSGTexture> aroundTexture(
        std::any_of(places.begin() + 1, places.end(), [](const QRect& place) { return !place.isEmpty(); })
            ? window.createTextureFromImage(frame, QQuickWindow::TextureHasAlphaChannel)
            : nullptr);
    for (std::size_t i = 0; i < m_parts.size(); ++i) {
        QSGImageNode& part = *m_parts[i];
        const QRect& place = places[i];
        if (place.isEmpty()) {
            if (part.parent())
                removeChildNode(&part);
            continue;
        }
        part.setTexture(i == 0 ? insideTexture.get() : aroundTexture.get());
        part.setSourceRect(i == 0 ? QRectF(QPointF(), place.size()) : QRectF(place));
        part.setRect(QRectF(QPointF(place.topLeft()) / ratio, QSizeF(place.size()) / ratio));
        part.markDirty(DirtyMaterial);
        if (!part.parent())
            appendChildNode(&part);
    }
    m_inside = std::move(insideTexture);
    m_around = std::move(aroundTexture);
    m_frame = frame;
}

} // namespace framora
