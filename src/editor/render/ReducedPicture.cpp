#include "editor/render/ReducedPicture.h"

#include "editor/render/JpegFrame.h"
#include "editor/render/PictureCompleteness.h"
#include "editor/render/PictureFile.h"
#include "editor/render/RowReducer.h"
#include "editor/render/SrgbPicture.h"
#include "editor/render/StillFormat.h"
#include "editor/render/TiffReduction.h"
#include "editor/render/WatchedBytes.h"
#include "editor/render/WebpReduction.h"
#include "editor/render/raster/PngReader.h"

#include <QImageReader>
#include <algorithm>
#include <utility>

namespace framora {
namespace {

constexpr int jpegParts = 8; ///< The decoder gives any number of eighths of a picture.

QImage reduced(const QImage& image, int factor) {
    if (image.isNull() || factor == 1)
        return image;
    RowReducer reducer(image.size(), factor, image.format());
    for (int y = 0; y < image.height(); ++y)
        reducer.add(image.constScanLine(y));
    return reducer.take();
}

/// A PNG of the usual kind; nothing for another or a damaged one.
std::optional<QImage> reducedPng(const QByteArray& encoded, int factor, DecodingWatch& watch) {
    const auto png = raster::plainPng(
        {reinterpret_cast<const std::uint8_t*>(encoded.constData()), std::size_t(encoded.size())});
    // The file may be another than the one whose header was read.
    if (!png || !isWithinPictureBounds(png->width, png->height) || png->width < factor ||
        png->height < factor)
        return {};
    RowReducer reducer({png->width, png->height}, factor, QImage::Format_ARGB32_Premultiplied);
    const bool decoded = raster::decodePlainPngRows(*png, [&](int, const std::uint32_t* row) {
        reducer.add(reinterpret_cast<const uchar*>(row));
        return !watch.isOver();
    });
    return decoded ? std::optional(reducer.take()) : std::nullopt;
}

/// How many eighths of each side fill the box.
int neededEighths(QSize size, QSize box) {
    const auto eighths = [](int whole, int part) { return (part * jpegParts + whole - 1) / whole; };
    return std::clamp(std::min(eighths(size.width(), box.width()), eighths(size.height(), box.height())), 1,
                      jpegParts);
}

/// What a decoder of all of the picture holds beside the coded file.
qint64 wholeBytes(const QImageReader& reader, QSize size) {
    constexpr qint64 pixelBytes = 4;
    const QImage::Format format = reader.imageFormat();
    const qint64 pixels = qint64(size.width()) * size.height();
    // Formats that do not tell: as much again for what the decoder keeps to itself.
    if (format == QImage::Format_Invalid)
        return pixels * pixelBytes * 2;
    const int bits = QImage::toPixelFormat(format).bitsPerPixel();
    return bits == 32 ? pixels * pixelBytes : pixels * (bits / 8 + pixelBytes);
}

} // namespace

ReducedPicture::ReducedPicture(QFile& file, QSize box) : m_file(file) {
    if (file.size() < 1 || file.size() > maximumPictureBytes)
        return;
    constexpr qint64 startBytes = 16;
    m_format = stillFormat(file.read(startBytes));
    if (m_format != "png" && m_format != "jpeg" && m_format != "webp" && m_format != "tiff")
        return;
    file.seek(0);
    QImageReader reader(&file, m_format);
    reader.setAutoDetectImageFormat(false);
    const QSize size = reader.canRead() ? reader.size() : QSize();
    if (size.isEmpty() || !isWithinPictureBounds(size.width(), size.height()))
        return;
    qint64 coefficientBytes = 0;
    if (m_format == "jpeg") {
        const auto frame = JpegFrame::read(file);
        if (!frame)
            return;
        coefficientBytes = frame->coefficientBytes();
        // Turned on its side or not, the box is filled in one direction.
        const int eighths = std::max(neededEighths(size, box), neededEighths(size, box.transposed()));
        if (eighths < jpegParts)
            m_scaledSize = size * eighths / jpegParts;
    }
    if (m_scaledSize.isEmpty()) {
        m_scaledSize = QSize();
        m_factor = std::max(1, std::min(std::max(size.width() / box.width(), size.height() / box.height()),
                                        std::max(size.height() / box.width(), size.width() / box.height())));
        m_factor = std::min({m_factor, size.width(), size.height()});
        m_bytesNeeded = file.size() + coefficientBytes + wholeBytes(reader, size);
        return;
    }
    m_bytesNeeded = file.size() + coefficientBytes + wholeBytes(reader, m_scaledSize) * 2;
}

QImage ReducedPicture::decode(const DecodingBounds& bounds) {
    m_file.seek(0);
    DecodingWatch watch(bounds);
    const QByteArray encoded = m_file.read(maximumPictureBytes);
    if (isCutOff(encoded))
        return {};
    if (!m_scaledSize.isEmpty())
        return decodeJpeg(encoded, watch);
    if (auto image = decodeInRows(encoded, watch))
        return srgbPicture(std::move(*image));
    return watch.isOver() ? QImage() : reduced(loadPicture(encoded, bounds).image, m_factor);
}

QImage ReducedPicture::decodeJpeg(const QByteArray& encoded, DecodingWatch& watch) const {
    WatchedBytes bytes(encoded, watch, jpegPieceBytes);
    QImageReader reader(&bytes, m_format);
    reader.setAutoTransform(true);
    reader.setScaledSize(m_scaledSize);
    QImage image = reader.read();
    return watch.isOver() ? QImage() : srgbPicture(std::move(image));
}

/// Nothing for what is read as a whole instead.
std::optional<QImage> ReducedPicture::decodeInRows(const QByteArray& encoded, DecodingWatch& watch) const {
    if (m_format == "png")
        return reducedPng(encoded, m_factor, watch);
    if (m_format == "webp")
        return reducedWebp(encoded, m_factor, watch);
    return m_format == "tiff" ? reducedTiff(encoded, m_factor, watch) : std::nullopt;
}

} // namespace framora
