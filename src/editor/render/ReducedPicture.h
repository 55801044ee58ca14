#pragma once

#include "editor/render/DecodingWatch.h"

#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QSize>
#include <optional>

namespace framora {

/// A still picture that is wanted small: what decoding it will take is known before anything of it is taken.
class ReducedPicture {
public:
    /// Reads the header of the open PNG, JPEG, WebP or TIFF file, which outlives this. The decoded picture
    /// may be smaller than the file's, but fills `box` in one direction if the file's does. Throws
    /// std::bad_alloc.
    ReducedPicture(QFile& file, QSize box);

    /// An upper bound for the memory that decode() holds at once, the result included; 0 when the file is no
    /// picture or larger than any that can be drawn.
    qint64 bytesNeeded() const { return m_bytesNeeded; }
    /// Upright, ARGB32_Premultiplied in sRGB; null when the file is damaged or cut off or the bounds are met.
    /// May throw std::bad_alloc.
    QImage decode(const DecodingBounds& bounds = {});

private:
    QImage decodeJpeg(const QByteArray& encoded, DecodingWatch& watch) const;
    std::optional<QImage> decodeInRows(const QByteArray& encoded, DecodingWatch& watch) const;

    QFile& m_file;
    QByteArray m_format; ///< As the decoders name it.
    int m_factor = 1;    ///< By which each side of what was decoded whole is divided.
    QSize m_scaledSize;  ///< What the decoder is asked for; empty for all of it.
    qint64 m_bytesNeeded = 0;
};

} // namespace framora
