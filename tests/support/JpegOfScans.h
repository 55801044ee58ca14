#pragma once

#include <QByteArray>
#include <algorithm>

namespace framora {

inline QByteArray jpegSegment(char marker, const QByteArray& content) {
    QByteArray bytes("\xff", 1);
    bytes += marker;
    const qsizetype length = content.size() + 2;
    bytes += char(length >> 8);
    bytes += char(length);
    return bytes + content;
}

/// A valid grey JPEG whose every scan goes through the whole picture to change nothing of it, for two bytes
/// for each 32767 of its blocks.
inline QByteArray jpegOfScans(int side, int scans) {
    const auto side16 = QByteArray(1, char(side >> 8)) + char(side);
    const qint64 blocks = qint64((side + 7) / 8) * ((side + 7) / 8);
    QByteArray jpeg("\xff\xd8", 2);
    jpeg += jpegSegment('\xdb', QByteArray(1, 0) + QByteArray(64, 1));
    jpeg += jpegSegment('\xc2', QByteArray(1, 8) + side16 + side16 + QByteArray::fromHex("01011100"));
    jpeg += jpegSegment('\xc4', QByteArray::fromHex("0001") + QByteArray(15, 0) + QByteArray(1, 0));
    // '0' begins a run of 16384 blocks and more, '10' ends one block.
    jpeg +=
        jpegSegment('\xc4', QByteArray::fromHex("100101") + QByteArray(14, 0) + QByteArray::fromHex("e000"));
    jpeg += jpegSegment('\xda', QByteArray::fromHex("010100000000")) + QByteArray((blocks + 7) / 8, 0);
    QByteArray bits;
    for (qint64 left = blocks; left > 0;) {
        const qint64 run = left >= 16384 ? std::min<qint64>(left, 32767) : 1;
        bits +=
            run == 1 ? QByteArray("10") : '0' + QByteArray::number(run - 16384, 2).rightJustified(14, '0');
        left -= run;
    }
    bits += QByteArray(-bits.size() & 7, '1');
    QByteArray passes = jpegSegment('\xda', QByteArray::fromHex("010100013f00"));
    for (qsizetype at = 0; at < bits.size(); at += 8) {
        const auto byte = char(bits.mid(at, 8).toUInt(nullptr, 2));
        passes += byte;
        if (byte == '\xff')
            passes += '\0';
    }
    return jpeg + passes.repeated(scans) + QByteArray("\xff\xd9", 2);
}

} // namespace framora
