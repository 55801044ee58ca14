#pragma once

#include "editor/render/raster/DrawnTiles.h"
#include "editor/render/raster/PixelBuffer.h"

#include <QImage>
#include <QRect>
#include <QSize>
#include <memory>

namespace framora {

/// A picture that is drawn frame after frame into the same memory, of each frame only what has changed.
class LivePicture {
public:
    /// The picture in its own memory, as ARGB32_Premultiplied with a devicePixelRatio of 1: it shows every
    /// later frame of the same size, too. Null before the first frame and where memory is short.
    const QImage& view() const { return m_view; }
    bool isNull() const { return m_view.isNull(); }
    QRect rect() const { return m_view.rect(); }

    /// Whether the last frame wrote anything into a part of the picture.
    bool hasChanged(const QRect& part) const;
    /// The largest part that the last frame left as it was; may be empty.
    QRect unchanged() const;

    /// Draws a frame of so many pixels. False, and a null picture, where memory is short.
    bool draw(QSize size, const std::vector<raster::Layer>& layers);
    void clear();

private:
    std::shared_ptr<raster::PixelBuffer> m_pixels;
    QImage m_view;
    raster::DrawnTiles m_tiles;
};

} // namespace framora
