#pragma once

#include "editor/render/DecodingWatch.h"
#include "editor/render/decoders/DecodedPicture.h"
#include "editor/render/raster/PngEncoder.h"

#include <QByteArray>
#include <QIODevice>
#include <QImage>
#include <QString>

namespace framora {

/// A decoded picture, or one line that says why there is none.
struct LoadedPicture {
    QImage image; ///< ARGB32_Premultiplied in sRGB, upright, with its stored pixel ratio; null on failure
    QString error;

    explicit operator bool() const { return !image.isNull(); }
};

/// Files beyond this are not read at all; a pipe or a device may never end.
inline constexpr qint64 maximumPictureBytes = qint64(1) << 28;

/// Reads a PNG, JPEG, WebP, TIFF, GIF or BMP file. A missing or cut-off file, absurd dimensions, what takes
/// longer than the bounds, what finds no memory and what is no picture each give an error and no image. From
/// any thread.
LoadedPicture loadPicture(const QString& path);
LoadedPicture loadPicture(QIODevice& openDevice, const DecodingBounds& bounds = {});
LoadedPicture loadPicture(const QByteArray& encoded, const DecodingBounds& bounds = {});

/// `image` as a PNG file of that resolution; empty when the image is null or memory is short.
QByteArray encodePng(const QImage& image, double dotsPerInch,
                     raster::PngSpeed speed = raster::PngSpeed::compact);

/// Puts `bytes` where `path` says, whole or not at all; an existing file stays until the new one is complete.
/// Gives one line on failure, nothing on success.
QString writeFileAtomically(const QString& path, const QByteArray& bytes);

} // namespace framora
