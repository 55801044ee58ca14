#include "platform/PictureResolution.h"

#include <QtEndian>
#include <cmath>
#include <optional>

namespace framora {
namespace {

/// A stored resolution and what one unit of it is worth; the file rounds to whole units.
struct StoredResolution {
    quint32 x = 0;
    quint32 y = 0;
    double unitsPerInch = 1.0; ///< how many stored units one dot per inch makes
};

quint32 read32(QByteArrayView bytes, qsizetype at) {
    return qFromBigEndian<quint32>(bytes.data() + at);
}

quint16 read16(QByteArrayView bytes, qsizetype at) {
    return qFromBigEndian<quint16>(bytes.data() + at);
}

std::optional<StoredResolution> pngResolution(QByteArrayView file) {
    constexpr qsizetype chunkFrame = 12; // length, type, checksum
    for (qsizetype at = 8; at + chunkFrame <= file.size();) {
        const quint32 length = read32(file, at);
        const QByteArrayView type = file.sliced(at + 4, 4);
        if (type == "IDAT" || type == "IEND" || length > quint32(file.size() - at - chunkFrame))
            return std::nullopt;
        if (type == "pHYs") {
            constexpr char metre = 1;
            if (length != 9 || file[at + 16] != metre)
                return std::nullopt;
            return StoredResolution{read32(file, at + 8), read32(file, at + 12), 1.0 / 0.0254};
        }
        at += chunkFrame + qsizetype(length);
    }
    return std::nullopt;
}

std::optional<StoredResolution> jpegResolution(QByteArrayView file) {
    constexpr uchar startOfScan = 0xda;
    constexpr uchar application0 = 0xe0;
    for (qsizetype at = 2; at + 4 <= file.size();) {
        if (uchar(file[at]) != 0xff)
            return std::nullopt;
        const uchar marker = uchar(file[at + 1]);
        if (marker == 0xff) { // fill byte
            ++at;
            continue;
        }
        const quint16 length = read16(file, at + 2);
        if (marker == startOfScan || length < 2 || length > file.size() - at - 2)
            return std::nullopt;
        if (marker == application0 && length >= 14 && file.sliced(at + 4, 5) == QByteArrayView("JFIF\0", 5)) {
            const char unit = file[at + 11];
            if (unit != 1 && unit != 2)
                return std::nullopt;
            const double unitsPerInch = unit == 1 ? 1.0 : 1.0 / 2.54;
            return StoredResolution{read16(file, at + 12), read16(file, at + 14), unitsPerInch};
        }
        at += 2 + length;
    }
    return std::nullopt;
}

} // namespace

double storedPixelRatio(QByteArrayView file) {
    std::optional<StoredResolution> stored;
    if (file.startsWith(QByteArrayView("\x89PNG\r\n\x1a\n", 8)))
        stored = pngResolution(file);
    else if (file.startsWith("\xff\xd8"))
        stored = jpegResolution(file);
    if (!stored || stored->x != stored->y)
        return 1.0;

    constexpr double dotsPerStep = 72.0 * 0.25;
    const double step = dotsPerStep * stored->unitsPerInch;
    const double steps = std::round(stored->x / step);
    // A metre has so many units that writers which cut the fraction off are told apart too.
    const double slack = step > 100.0 ? 1.0 : 0.5;
    if (steps < 1.0 || std::abs(stored->x - steps * step) > slack)
        return 1.0;
    return steps * 0.25;
}

} // namespace framora
