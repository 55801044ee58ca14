#pragma once

#include <QImage>
#include <QRect>
#include <QSGNode>
#include <array>
#include <memory>

class QQuickWindow;
class QSGImageNode;
class QSGTexture;

namespace framora {

/// A drawn frame in the scene. What of it is opaque is given to the scene as such, which then copies it
/// instead of blending it and draws nothing under it; around that there is no more than shows something.
///
/// Its matrix stays the identity. It is a transform node because the software renderer forgets where a plain
/// node is: parts that are added to one later would be drawn at the window's corner.
class CanvasFrame final : public QSGTransformNode {
public:
    explicit CanvasFrame(QQuickWindow& window);
    ~CanvasFrame() override;

    /// Shows an ARGB32_Premultiplied frame, which is held until the next call, with its corner at the
    /// origin. `opaque`, in the frame's pixels, may be empty.
    void show(QQuickWindow& window, const QImage& frame, const QRect& opaque, double ratio);

    /// The smallest rectangle inside `part` that holds all of its pixels that are not transparent.
    static QRect used(const QImage& frame, QRect part);

private:
    QImage m_frame; ///< Outlives the textures, which use its memory.
    std::unique_ptr<QSGTexture> m_inside;
    std::unique_ptr<QSGTexture> m_around;
    /// The opaque part, then what is above, below, left and right of it.
    std::array<std::unique_ptr<QSGImageNode>, 5> m_parts;
};

} // namespace framora
