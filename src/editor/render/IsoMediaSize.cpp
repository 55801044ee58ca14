#include "editor/render/IsoMediaSize.h"

#include <QByteArray>
#include <QtEndian>
#include <algorithm>
#include <array>
#include <limits>
#include <unistd.h>

namespace framora {
namespace {

quint32 number(QByteArrayView bytes, qsizetype at) {
    return at >= 0 && at + 4 <= bytes.size() ? qFromBigEndian<quint32>(bytes.data() + at) : 0;
}

/// Of "ispe" boxes, which say a picture's size: any two numbers of 32 bits.
qint64 pictureSize(QByteArrayView box, qsizetype at) {
    constexpr quint32 mostSide = 1 << 24;
    return qint64(std::min(number(box, at + 8), mostSide)) * std::min(number(box, at + 12), mostSide);
}

/// Of "tkhd" boxes, a track's header: in two widths of its times, and in 65536ths of a pixel.
qint64 trackSize(QByteArrayView box, qsizetype at) {
    const qsizetype size = at + (number(box, at + 4) >> 24 == 1 ? 92 : 80);
    return qint64(number(box, size) >> 16) * (number(box, size + 4) >> 16);
}

} // namespace

bool isHeif(int descriptor) {
    std::array<char, 8> start{};
    return pread(descriptor, start.data(), start.size(), 0) == ssize_t(start.size()) &&
           QByteArrayView(start).sliced(4) == "ftyp";
}

qint64 isoMediaPixels(int fileDescriptor) {
    constexpr int mostBoxes = 64;
    constexpr qsizetype mostBytes = 1 << 20;
    qint64 most = 0;
    off_t at = 0;
    for (int i = 0; i < mostBoxes; ++i) {
        std::array<char, 16> header{};
        if (pread(fileDescriptor, header.data(), header.size(), at) < 8)
            break;
        qint64 size = qFromBigEndian<quint32>(header.data());
        if (size == 1)
            size = qFromBigEndian<qint64>(header.data() + 8);
        const QByteArrayView type(header.data() + 4, 4);
        if (type == "moov" || type == "meta") {
            QByteArray box(qsizetype(std::min<qint64>(size > 0 ? size : mostBytes, mostBytes)), '\0');
            box.resize(std::max<ssize_t>(pread(fileDescriptor, box.data(), std::size_t(box.size()), at), 0));
            for (qsizetype found = box.indexOf("ispe"); found >= 0; found = box.indexOf("ispe", found + 1))
                most = std::max(most, pictureSize(box, found));
            for (qsizetype found = box.indexOf("tkhd"); found >= 0; found = box.indexOf("tkhd", found + 1))
                most = std::max(most, trackSize(box, found));
        }
        if (size < 8 || size > std::numeric_limits<off_t>::max() - at)
            break;
        at += size;
    }
    return most;
}

} // namespace framora
