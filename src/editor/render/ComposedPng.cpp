#include "editor/render/ComposedPng.h"

#include "editor/render/CompositionRasterizer.h"
#include "editor/render/PictureFile.h"
#include "editor/render/ScreenshotRenderer.h"
#include "editor/render/raster/Opacity.h"

#include <algorithm>

namespace framora {
namespace {

using raster::PixelBuffer;

/// The rows [first, end) of the picture, in `room`; empty when memory is short.
raster::PixelView drawnRows(const raster::Compositor& picture, int first, int end, PixelBuffer& room) {
    const int count = end - first;
    if (room.width() != picture.width() || room.height() < count)
        room = PixelBuffer::create(picture.width(), count);
    if (room.isEmpty())
        return {};
    raster::MutablePixelView rows = room.mutableView();
    rows.height = count;
    picture.draw(rows, first);
    return rows;
}

/// Whether the picture has a pixel that is not opaque among its first rows.
bool isSeenThrough(const raster::Compositor& picture) {
    PixelBuffer room;
    const raster::PixelView rows = drawnRows(picture, 0, std::min(picture.height(), raster::tileGrain), room);
    return !rows.isEmpty() && !raster::areRowsOpaque(rows);
}

} // namespace

std::optional<QByteArray> composedPng(const Composition& composition) {
    const QSizeF size = outputFrame(pointSize(composition.image), composition.config);
    const auto viewport = CompositionRasterizer::frameViewport(size, exportScale);
    if (!viewport)
        return {};
    CompositionRasterizer rasterizer;
    const raster::Compositor picture(viewport->pixelSize.width(), viewport->pixelSize.height(),
                                     rasterizer.layers(composition, *viewport));
    const bool isOpaque = picture.isSurelyOpaque();
    if (isOpaque || isSeenThrough(picture)) {
        const auto rows = [&](int first, int end, PixelBuffer& room) {
            const raster::PixelView drawn = drawnRows(picture, first, end, room);
            return isOpaque && !raster::areRowsOpaque(drawn) ? raster::PixelView() : drawn;
        };
        QByteArray file;
        const auto append = [&](std::span<const std::uint8_t> bytes) {
            // Room that is taken only as far as it is filled: growing the file would copy it again and again.
            constexpr qsizetype usualRatio = 16;
            if (file.isEmpty())
                file.reserve(qsizetype(picture.width()) * picture.height() * 3 / usualRatio);
            file.append(reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size()));
        };
        if (raster::writePng({picture.width(), picture.height(), isOpaque, rows},
                             raster::pixelsPerMetre(exportDotsPerInch), raster::PngSpeed::compact, append))
            return file;
    }
    // Whether it is opaque shows only in the whole picture.
    const QImage drawn = rasterizer.drawFrame(composition, size, exportScale);
    if (drawn.isNull())
        return QByteArray(); // it is a frame that can be drawn
    return encodePng(drawn, exportDotsPerInch);
}

} // namespace framora
