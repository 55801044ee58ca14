#include "editor/render/LivePicture.h"

#include "editor/render/raster/HugePages.h"

#include <new>

namespace framora {
namespace {

raster::TileRect tileRect(const QRect& rect) {
    return {rect.x(), rect.y(), rect.width(), rect.height()};
}

} // namespace

bool LivePicture::hasChanged(const QRect& part) const {
    return m_tiles.hasChanged(tileRect(part));
}

QRect LivePicture::unchanged() const {
    const raster::TileRect part = m_tiles.unchanged();
    return {part.x, part.y, part.width, part.height};
}

void LivePicture::clear() {
    m_view = {};
    m_pixels = nullptr;
    m_tiles = {};
}

bool LivePicture::draw(QSize size, const std::vector<raster::Layer>& layers) {
    if (m_view.size() != size) {
        clear();
        auto pixels =
            std::make_shared<raster::PixelBuffer>(raster::PixelBuffer::create(size.width(), size.height()));
        if (pixels->isEmpty())
            return false;
        const raster::MutablePixelView view = pixels->mutableView();
        raster::adviseHugePages(view.data, std::size_t(view.stride) * std::size_t(view.height));
        // Who still shows it keeps the memory.
        auto held = std::make_unique<std::shared_ptr<raster::PixelBuffer>>(pixels);
        m_view = QImage(
            reinterpret_cast<const uchar*>(view.data), view.width, view.height, view.stride,
            QImage::Format_ARGB32_Premultiplied,
            [](void* holder) { delete static_cast<std::shared_ptr<raster::PixelBuffer>*>(holder); },
            held.get());
        if (m_view.isNull())
            return false;
        static_cast<void>(held.release()); // the picture has it now
        m_pixels = std::move(pixels);
    }
    try {
        raster::compose(m_pixels->mutableView(), layers, &m_tiles);
    } catch (const std::bad_alloc&) {
        // Tiles count as drawn from when they are begun.
        clear();
        return false;
    }
    return true;
}

} // namespace framora
