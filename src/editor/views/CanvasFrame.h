#pragma once

#include "editor/render/LivePicture.h"

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
/// Parts that the last frame left as they were are not drawn again.
///
/// Its matrix stays the identity. It is a transform node because the software renderer forgets where a plain
/// node is: parts that are added to one later would be drawn at the window's corner.
class CanvasFrame final : public QSGTransformNode {
public:
    explicit CanvasFrame(QQuickWindow& window);
    ~CanvasFrame() override;

    /// Shows the picture's last frame, with its corner at the origin. It is to be called after every frame,
    /// since the scene uses the picture's memory. `opaque`, in the frame's pixels, may be empty.
    void show(QQuickWindow& window, const LivePicture& picture, const QRect& opaque, double ratio);

    /// The smallest rectangle inside `part` that holds all of its pixels that are not transparent.
    static QRect used(const QImage& frame, QRect part);
    /// The largest rectangle inside `part`, in pixels, whose edges lie on whole points at `ratio` pixels a
    /// point; empty where there is none. The software renderer counts what it draws again in whole points: of
    /// two parts that meet between them it leaves a row as it was, and puts shadows above it there once more.
    static QRect onWholePoints(const QRect& part, double ratio);

private:
    /// The opaque parts, then what is above, below, left and right of them.
    static constexpr std::size_t opaqueParts = 5;
    static constexpr std::size_t partCount = opaqueParts + 4;

    struct Part {
        QRect area; ///< Of the frame.
        std::unique_ptr<QSGImageNode> node;
    };

    /// Chooses the part of what is opaque that shall not be drawn again when the rest is.
    void chooseStill(const LivePicture& picture, double ratio);
    std::array<QRect, partCount> areas(const QRect& whole) const;

    QImage m_frame; ///< Outlives the textures, which use its memory.
    double m_ratio = 0;
    QRect m_opaque;
    QRect m_still; ///< In m_opaque; may be empty.
    std::unique_ptr<QSGTexture> m_solid;
    std::unique_ptr<QSGTexture> m_blended;
    std::array<Part, partCount> m_parts;
};

} // namespace framora
