#include "editor/views/CanvasFrame.h"

#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGRendererInterface>
#include <QSGTexture>
#include <algorithm>
#include <cmath>
#include <cstring>

namespace framora {
namespace {

qint64 areaOf(const QRect& rect) {
    return qint64(rect.width()) * rect.height();
}

/// What is above, below, left and right of a part of `whole`; all of it is above an empty one.
std::array<QRect, 4> around(const QRect& part, const QRect& whole) {
    if (part.isEmpty())
        return {whole, QRect(), QRect(), QRect()};
    const int right = part.x() + part.width();
    const int bottom = part.y() + part.height();
    const int wholeRight = whole.x() + whole.width();
    const int wholeBottom = whole.y() + whole.height();
    return {QRect(whole.x(), whole.y(), whole.width(), part.y() - whole.y()),
            QRect(whole.x(), bottom, whole.width(), wholeBottom - bottom),
            QRect(whole.x(), part.y(), part.x() - whole.x(), part.height()),
            QRect(right, part.y(), wholeRight - right, part.height())};
}

/// Other renderers than the software one copy a picture when its texture is made.
bool drawsFromMemory(const QQuickWindow& window) {
    return window.rendererInterface()->graphicsApi() == QSGRendererInterface::Software;
}

} // namespace

CanvasFrame::CanvasFrame(QQuickWindow& window) {
    for (Part& part : m_parts) {
        part.node.reset(window.createImageNode());
        part.node->setFlag(QSGNode::OwnedByParent, false);
        part.node->setFiltering(QSGTexture::Nearest);
    }
}

CanvasFrame::~CanvasFrame() = default;

QRect CanvasFrame::used(const QImage& frame, QRect part) {
    part &= frame.rect();
    if (part.isEmpty())
        return {};
    int left = part.x() + part.width();
    int right = part.x();
    int top = part.y() + part.height();
    int bottom = part.y();
    const auto width = std::size_t(part.width());
    for (int y = part.y(); y < part.y() + part.height(); ++y) {
        const QRgb* row = reinterpret_cast<const QRgb*>(frame.constScanLine(y));
        const QRgb* const from = row + part.x();
        const QRgb* const end = from + part.width();
        // Most rows are all alike.
        if (*from == 0 && std::memcmp(from, from + 1, (width - 1) * sizeof *from) == 0)
            continue;
        const QRgb* const first = std::find_if(from, end, [](QRgb pixel) { return pixel != 0; });
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

QRect CanvasFrame::onWholePoints(const QRect& part, double ratio) {
    // How many pixels are the fewest whole points.
    constexpr int most = 64;
    int step = 1;
    while (step <= most && std::abs(step / ratio - std::round(step / ratio)) > 1e-6)
        ++step;
    if (step > most || part.isEmpty())
        return {};
    const auto up = [step](int edge) { return (edge + step - 1) / step * step; };
    const auto down = [step](int edge) { return edge / step * step; };
    const QPoint corner(up(part.x()), up(part.y()));
    const QPoint end(down(part.x() + part.width()), down(part.y() + part.height()));
    return QRect(corner, QSize(std::max(0, end.x() - corner.x()), std::max(0, end.y() - corner.y())));
}

void CanvasFrame::chooseStill(const LivePicture& picture, double ratio) {
    if (!m_opaque.contains(m_still) || picture.hasChanged(m_still))
        m_still = {};
    if (!picture.hasChanged(m_opaque))
        return;
    const QRect best = onWholePoints(picture.unchanged() & m_opaque, ratio);
    // Another division has all of it drawn again.
    constexpr int worth = 4; // a quarter of it more
    if (areaOf(best) > areaOf(m_still) + (m_still.isEmpty() ? 0 : areaOf(m_opaque) / worth))
        m_still = best;
}

std::array<QRect, CanvasFrame::partCount> CanvasFrame::areas(const QRect& whole) const {
    std::array<QRect, partCount> areas;
    areas[0] = m_still;
    std::ranges::copy(around(m_still, m_opaque), areas.begin() + 1);
    std::ranges::copy(around(m_opaque, whole), areas.begin() + opaqueParts);
    return areas;
}

void CanvasFrame::show(QQuickWindow& window, const LivePicture& picture, const QRect& opaque, double ratio) {
    const QImage& frame = picture.view();
    const bool isNew = !drawsFromMemory(window) || m_frame.constBits() != frame.constBits() ||
                       m_frame.size() != frame.size() || m_ratio != ratio;
    std::unique_ptr<QSGTexture> oldSolid;
    std::unique_ptr<QSGTexture> oldBlended;
    if (isNew) {
        oldSolid = std::move(m_solid);
        oldBlended = std::move(m_blended);
        // The same memory as pixels without alpha.
        const QImage solid(frame.constBits(), frame.width(), frame.height(), frame.bytesPerLine(),
                           QImage::Format_RGB32);
        m_solid.reset(window.createTextureFromImage(solid, QQuickWindow::TextureIsOpaque));
        m_blended.reset(window.createTextureFromImage(frame, QQuickWindow::TextureHasAlphaChannel));
        m_frame = frame;
        m_ratio = ratio;
    }
    m_opaque = onWholePoints(opaque & frame.rect(), ratio);
    chooseStill(picture, ratio);
    const std::array<QRect, partCount> places = areas(frame.rect());
    for (std::size_t i = 0; i < partCount; ++i) {
        Part& part = m_parts[i];
        if (!isNew && part.area == places[i] && !picture.hasChanged(places[i]))
            continue;
        const bool isOpaque = i < opaqueParts;
        part.area = places[i];
        const QRect shown = isOpaque ? part.area : used(frame, part.area);
        QSGImageNode& node = *part.node;
        if (shown.isEmpty()) {
            if (node.parent())
                removeChildNode(&node);
            continue;
        }
        node.setTexture(isOpaque ? m_solid.get() : m_blended.get());
        node.setSourceRect(QRectF(shown));
        node.setRect(QRectF(QPointF(shown.topLeft()) / ratio, QSizeF(shown.size()) / ratio));
        node.markDirty(DirtyMaterial);
        if (!node.parent())
            appendChildNode(&node);
    }
}

} // namespace framora
