#include "editor/render/PictureFile.h"

#include "editor/render/NamelessFile.h"
#include "editor/render/PictureCompleteness.h"
#include "editor/render/SrgbPicture.h"
#include "editor/render/StillFormat.h"
#include "editor/render/WatchedBytes.h"
#include "editor/render/raster/HugePages.h"
#include "editor/render/raster/PngReader.h"
#include "platform/PictureResolution.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QSaveFile>
#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <new>

namespace framora {
namespace {

LoadedPicture failure(const QString& error) {
    return {.image = QImage(), .error = error};
}

bool isWithinBounds(QSize size) {
    return isWithinPictureBounds(size.width(), size.height());
}

/// The bound is the process's own; it only has to let through what `isWithinBounds` does, at 16 bits a
/// channel.
void raiseDecoderLimit() {
    static std::once_flag once;
    std::call_once(once, [] { QImageReader::setAllocationLimit(int(maximumPicturePixels * 8 >> 20)); });
}

/// The reader's own picture beforehand, in large pages: most of what a decoder waits for is its memory. Null
/// for formats that are small or whose reader may not take it. Throws std::bad_alloc.
QImage roomFor(const QImageReader& reader, QSize size) {
    if (reader.format() != "jpeg" && reader.format() != "png")
        return {};
    const QImage::Format format = reader.imageFormat();
    if (format == QImage::Format_Invalid || size.isEmpty())
        return {};
    QImage image(size, format);
    if (image.isNull())
        throw std::bad_alloc();
    raster::adviseHugePages(image.bits(), std::size_t(image.sizeInBytes()));
    return image;
}

/// A picture all of whose pixels are about to be written. In large pages where it is large: half of what
/// writing it takes is fresh memory. Throws std::bad_alloc.
QImage unwrittenPicture(int width, int height) {
    constexpr QImage::Format format = QImage::Format_ARGB32_Premultiplied;
    constexpr std::size_t largeBytes = 8 << 20;
    const std::size_t rowBytes = std::size_t(width) * sizeof(QRgb);
    QImage image;
    if (rowBytes * std::size_t(height) < largeBytes) {
        image = QImage(width, height, format);
    } else if (void* const pixels = raster::allocateHugePages(rowBytes * std::size_t(height))) {
        image = QImage(static_cast<uchar*>(pixels), width, height, qsizetype(rowBytes), format, std::free,
                       pixels);
    }
    if (image.isNull())
        throw std::bad_alloc();
    return image;
}

/// A PNG of the usual kind, several times faster than by the reader for all kinds. Null for everything that
/// it does not take: the other reader knows what it is, or what is wrong with it.
QImage readPlainPng(const QByteArray& encoded, DecodingWatch& watch) {
    const auto png = raster::plainPng(
        {reinterpret_cast<const std::uint8_t*>(encoded.constData()), std::size_t(encoded.size())});
    if (!png || !isWithinBounds({png->width, png->height}))
        return {};
    QImage image = unwrittenPicture(png->width, png->height);
    constexpr int rowsAtOnce = 64;
    const bool decoded = raster::decodePlainPng(
        *png,
        {reinterpret_cast<std::byte*>(image.bits()), image.width(), image.height(), image.bytesPerLine()},
        [&watch](int y) { return y % rowsAtOnce != 0 || !watch.isOver(); });
    return decoded ? image : QImage();
}

QString decodingError(const QImageReader& reader) {
    return reader.error() == QImageReader::UnsupportedFormatError
               ? QStringLiteral("not a picture that can be read")
               : QStringLiteral("the picture is damaged or cut off");
}

/// For what a decoder has refused since `errno` was cleared. They do not tell a lack of memory from damage,
/// but what they take it from does. Throws std::bad_alloc.
LoadedPicture refusal(const QString& error) {
    if (errno == ENOMEM)
        throw std::bad_alloc();
    return failure(error);
}

/// `load()`, with an error where memory is short.
template <typename Load> LoadedPicture orNoMemory(const Load& load) {
    try {
        return load();
    } catch (const std::bad_alloc&) {
        return failure(QStringLiteral("not enough memory for the picture"));
    }
}

LoadedPicture decoded(const QByteArray& encoded, const DecodingBounds& bounds) {
    if (encoded.isEmpty())
        return failure(QStringLiteral("the file is empty"));
    const char* format = stillFormat(encoded);
    if (!format)
        return failure(QStringLiteral("not a picture that can be read"));
    DecodingWatch watch(bounds);
    if (QImage image = readPlainPng(encoded, watch); !image.isNull()) {
        image.setDevicePixelRatio(storedPixelRatio(encoded));
        return {.image = image, .error = QString()};
    }
    raiseDecoderLimit();
    errno = 0;
    const bool isJpeg = qstrcmp(format, "jpeg") == 0;
    WatchedBytes bytes(encoded, watch, isJpeg ? jpegPieceBytes : encoded.size());
    QImageReader reader(&bytes, format);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(true);
    if (!reader.canRead())
        return refusal(QStringLiteral("not a picture that can be read"));
    const QSize claimed = reader.size();
    if (claimed.isValid() && !isWithinBounds(claimed))
        return failure(QStringLiteral("the picture claims %1 x %2 pixels, more than can be drawn")
                           .arg(claimed.width())
                           .arg(claimed.height()));
    if (isCutOff(encoded))
        return failure(QStringLiteral("the picture is damaged or cut off"));

    QImage image = roomFor(reader, claimed);
    const bool isRead = reader.read(&image) && !image.isNull();
    if (watch.isOver())
        return failure(QStringLiteral("decoding the picture takes too long"));
    if (!isRead)
        return refusal(decodingError(reader));
    if (!isWithinBounds(image.size()))
        return failure(QStringLiteral("the picture has more pixels than can be drawn"));
    image = srgbPicture(std::move(image));
    image.setDevicePixelRatio(storedPixelRatio(encoded));
    return {.image = image, .error = QString()};
}

} // namespace

LoadedPicture loadPicture(const QByteArray& encoded, const DecodingBounds& bounds) {
    return orNoMemory([&] { return decoded(encoded, bounds); });
}

LoadedPicture loadPicture(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists())
        return failure(QStringLiteral("no such file"));
    if (info.isDir())
        return failure(QStringLiteral("a folder, not a picture"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return failure(QStringLiteral("cannot be opened: %1").arg(file.errorString()));
    return loadPicture(file);
}

LoadedPicture loadPicture(QIODevice& device, const DecodingBounds& bounds) {
    return orNoMemory([&] {
        constexpr qint64 pieceBytes = 1 << 20;
        QByteArray encoded;
        while (!bounds.stop.stop_requested()) {
            const QByteArray piece = device.read(pieceBytes);
            if (piece.isEmpty())
                break;
            encoded += piece;
            if (encoded.size() > maximumPictureBytes)
                return failure(QStringLiteral("the file is larger than any picture that can be drawn"));
        }
        const auto* file = qobject_cast<QFileDevice*>(&device);
        if (file && file->error() != QFileDevice::NoError)
            return failure(QStringLiteral("cannot be read: %1").arg(device.errorString()));
        return decoded(encoded, bounds);
    });
}

QByteArray encodePng(const QImage& image, double dotsPerInch, raster::PngSpeed speed) {
    const QImage pixels = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (pixels.isNull())
        return {};
    const raster::PixelView view{reinterpret_cast<const std::byte*>(pixels.constBits()), pixels.width(),
                                 pixels.height(), pixels.bytesPerLine()};
    QByteArray file;
    const bool complete = raster::writePng(
        view, raster::pixelsPerMetre(dotsPerInch), speed, [&](std::span<const std::uint8_t> bytes) {
            file.append(reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size()));
        });
    return complete ? file : QByteArray();
}

QString writeFileAtomically(const QString& path, const QByteArray& bytes) {
    const QFileInfo info(path);
    if (info.isDir())
        return QStringLiteral("a folder stands there");
    if (info.exists() && !info.isFile()) { // a device or a pipe: nothing to replace
        QFile device(path);
        if (!device.open(QIODevice::WriteOnly) || device.write(bytes) != bytes.size() || !device.flush())
            return device.errorString();
        return {};
    }
    if (writeThroughNamelessFile(path, bytes))
        return {};
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    // A full disk may take the beginning, which is no error of the file's.
    for (qsizetype done = 0; done < bytes.size();) {
        const qint64 count = file.write(bytes.constData() + done, bytes.size() - done);
        if (count <= 0)
            return file.errorString();
        done += count;
    }
    if (!file.commit())
        return file.errorString();
    return {};
}

} // namespace framora
