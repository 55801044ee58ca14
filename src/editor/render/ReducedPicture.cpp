#include "editor/render/ReducedPicture.h"

#include "editor/render/PictureCompleteness.h"
#include "editor/render/PictureFile.h"
#include "editor/render/SrgbPicture.h"
#include "editor/render/decoders/BoxSums.h"

#include <QBuffer>
#include <QImageReader>
#include <algorithm>

namespace framora {
namespace {

constexpr int jpegParts = 8; ///< The decoder gives any number of eighths of a picture.

/// Squares of `factor` pixels as one each. A scaler's filters would take their time over millions of pixels
/// that come to thousands.
QImage reduced(const QImage& image, int factor) {
    if (image.isNull() || factor == 1)
        return image;
    constexpr int channels = 4;
    BoxSums<std::uint8_t> sums(image.width(), channels, factor);
    QImage result(image.width() / factor, image.height() / factor, image.format());
    if (result.isNull())
        return image;
    for (int y = 0; y < result.height() * factor; ++y) {
        sums.add(image.constScanLine(y));
        if (y % factor == factor - 1)
            sums.take({result.scanLine(y / factor), sums.size()});
    }
    return result;
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
    QImageReader reader(&file);
    reader.setDecideFormatFromContent(true);
    const QSize size = reader.canRead() ? reader.size() : QSize();
    if (size.isEmpty() || size.width() > maximumPictureSide || size.height() > maximumPictureSide ||
        qint64(size.width()) * size.height() > maximumPicturePixels)
        return;
    if (reader.format() == "jpeg") {
        // Turned on its side or not, the box is filled in one direction.
        const int eighths = std::max(neededEighths(size, box), neededEighths(size, box.transposed()));
        if (eighths < jpegParts)
            m_scaledSize = size * eighths / jpegParts;
    }
    if (m_scaledSize.isEmpty()) {
        m_scaledSize = QSize();
        m_factor = std::max(1, std::min(std::max(size.width() / box.width(), size.height() / box.height()),
                                        std::max(size.height() / box.width(), size.width() / box.height())));
        m_bytesNeeded = file.size() + wholeBytes(reader, size);
        return;
    }
    // A progressive file's coefficients are kept whole; which kind it is shows only when it is read.
    constexpr qint64 coefficientBytes = 3;
    m_bytesNeeded = file.size() + qint64(size.width()) * size.height() * coefficientBytes +
                    wholeBytes(reader, m_scaledSize) * 2;
}

QImage ReducedPicture::decode() {
    m_file.seek(0);
    const QByteArray encoded = m_file.read(maximumPictureBytes);
    if (m_scaledSize.isEmpty())
        return reduced(loadPicture(encoded).image, m_factor);
    if (isCutOff(encoded))
        return {};
    QBuffer buffer;
    buffer.setData(encoded);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, "jpeg");
    reader.setAutoTransform(true);
    reader.setScaledSize(m_scaledSize);
    return srgbPicture(reader.read());
}

} // namespace framora
