#include "editor/render/PictureCompleteness.h"

#include "editor/render/TiffCompleteness.h"

#include <QtEndian>

namespace framora {
namespace {

uchar byteAt(QByteArrayView file, qsizetype at) {
    return static_cast<uchar>(file[at]);
}

/// Up to the end of its last chunk.
bool isCutOffPng(QByteArrayView file) {
    constexpr qsizetype chunkFrame = 12; // length, type, checksum
    for (qsizetype at = 8; at + chunkFrame <= file.size();) {
        if (file.sliced(at + 4, 4) == "IEND")
            return false;
        at += chunkFrame + qsizetype(qFromBigEndian<quint32>(file.data() + at));
    }
    return true;
}

/// Up to the end marker, which cannot stand inside the coded data; an embedded thumbnail's own lies before
/// the first scan.
bool isCutOffJpeg(QByteArrayView file) {
    constexpr uchar startOfScan = 0xda;
    for (qsizetype at = 2; at + 4 <= file.size();) {
        if (byteAt(file, at) != 0xff)
            return false; // damaged otherwise: the decoder's to say
        const uchar marker = byteAt(file, at + 1);
        if (marker == startOfScan)
            return file.indexOf("\xff\xd9", at) < 0;
        at += marker == 0xff ? 1 : 2 + qFromBigEndian<quint16>(file.data() + at + 2);
    }
    return true;
}

/// The bytes of a table of colours whose size the low bits of `flags` tell.
qsizetype colorTableBytes(uchar flags) {
    return flags & 0x80 ? qsizetype(3) << ((flags & 7) + 1) : 0;
}

/// Up to the end of its first picture.
bool isCutOffGif(QByteArrayView file) {
    constexpr uchar extension = 0x21;
    constexpr uchar picture = 0x2c;
    if (file.size() < 13)
        return true;
    qsizetype at = 13 + colorTableBytes(byteAt(file, 10));
    while (at < file.size()) {
        const uchar kind = byteAt(file, at);
        if (kind != extension && kind != picture)
            return false;
        if (kind == picture && at + 10 < file.size())
            at += 11 + colorTableBytes(byteAt(file, at + 9)); // the descriptor, its colours, the code size
        else
            at += 2;
        while (at < file.size() && byteAt(file, at) != 0)
            at += 1 + byteAt(file, at);
        ++at;
        if (kind == picture)
            return at > file.size();
    }
    return true;
}

/// Up to the size that its header states; some writers state none.
bool isCutOffBmp(QByteArrayView file) {
    return file.size() < 26 || qFromLittleEndian<quint32>(file.data() + 2) > quint64(file.size());
}

/// Up to the size that its header states.
bool isCutOffWebp(QByteArrayView file) {
    constexpr quint64 chunkHeader = 8;
    return file.size() < 12 ||
           qFromLittleEndian<quint32>(file.data() + 4) + chunkHeader > quint64(file.size());
}

} // namespace

bool isCutOff(QByteArrayView file) {
    if (file.startsWith(QByteArrayView("\x89PNG\r\n\x1a\n", 8)))
        return isCutOffPng(file);
    if (file.startsWith("\xff\xd8"))
        return isCutOffJpeg(file);
    if (file.startsWith("GIF8"))
        return isCutOffGif(file);
    if (file.startsWith("BM"))
        return isCutOffBmp(file);
    if (file.startsWith("RIFF"))
        return isCutOffWebp(file);
    return isCutOffTiff(file);
}

} // namespace framora
