#include "editor/render/ComposedPng.h"

#include "editor/render/CompositionRasterizer.h"
#include "editor/render/RasterView.h"
#include "editor/render/ScreenshotRenderer.h"
#include "editor/render/raster/Opacity.h"
#include "editor/render/raster/PngEncoder.h"

#include <algorithm>
#include <new>

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
    const raster::PixelView rows =
        drawnRows(picture, 0, std::min(picture.height(), raster::TileTaker::grain), room);
    return !rows.isEmpty() && !raster::areRowsOpaque(rows);
}

/// The file in memory.
class ByteTarget final : public PngTarget {
public:
    /// `expected` bytes of room are taken only as far as they are filled: growing would copy it all.
    explicit ByteTarget(qsizetype expected) : m_expected(expected) {}

    void write(std::span<const std::uint8_t> bytes) override {
        if (file.isEmpty())
            file.reserve(m_expected);
        file.append(reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size()));
    }
    void clear() override { file.clear(); }

    QByteArray file;

private:
    const qsizetype m_expected;
};

} // namespace

std::optional<bool> composePng(const Composition& composition, PngTarget& target) try {
    const QSizeF size = outputFrame(pointSize(composition.image), composition.config);
    const auto viewport = CompositionRasterizer::frameViewport(size, exportScale);
    if (!viewport)
        return {};
    CompositionRasterizer rasterizer;
    const raster::Compositor picture(viewport->pixelSize.width(), viewport->pixelSize.height(),
                                     rasterizer.layers(composition, *viewport));
    const auto write = [&target](std::span<const std::uint8_t> bytes) { target.write(bytes); };
    const std::uint32_t resolution = raster::pixelsPerMetre(exportDotsPerInch);
    const bool isOpaque = picture.isSurelyOpaque();
    if (isOpaque || isSeenThrough(picture)) {
        const auto rows = [&](int first, int end, PixelBuffer& room) {
            const raster::PixelView drawn = drawnRows(picture, first, end, room);
            return isOpaque && !raster::areRowsOpaque(drawn) ? raster::PixelView() : drawn;
        };
        if (raster::writePng({picture.width(), picture.height(), isOpaque, rows, picture.rowTiles()},
                             resolution, raster::PngSpeed::compact, write))
            return true;
        target.clear();
    }
    // Whether it is opaque shows only in the whole picture.
    const QImage drawn = rasterizer.drawFrame(composition, size, exportScale);
    return !drawn.isNull() &&
           raster::writePng(rasterView(drawn), resolution, raster::PngSpeed::compact, write);
} catch (const std::bad_alloc&) {
    return false; // what the layers keep beside the picture
}

std::optional<QByteArray> composedPng(const Composition& composition) {
    constexpr double usualRatio = 1.5; // bytes a point
    const QSizeF size = outputFrame(pointSize(composition.image), composition.config);
    const double expected = size.width() * size.height() * usualRatio;
    ByteTarget target(expected < double(CompositionRasterizer::mostPixels) ? qsizetype(expected) : 0);
    const std::optional<bool> isWhole = composePng(composition, target);
    if (!isWhole)
        return {};
    return *isWhole ? target.file : QByteArray();
}

} // namespace framora
