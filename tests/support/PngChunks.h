#pragma once

#include <QByteArray>
#include <QtEndian>
#include <initializer_list>

namespace framora {

/// One chunk of a PNG; `type` has four letters.
inline QByteArray pngChunk(const QByteArray& type, const QByteArray& content) {
    const auto bigEndian = [](quint32 value) {
        QByteArray bytes(4, '\0');
        qToBigEndian(value, bytes.data());
        return bytes;
    };
    quint32 sum = ~0u;
    for (const char byte : type + content) {
        sum ^= uchar(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = sum >> 1 ^ (sum & 1 ? 0xedb88320u : 0u);
    }
    return bigEndian(quint32(content.size())) + type + content + bigEndian(~sum);
}

/// The same with numbers of four bytes.
inline QByteArray pngChunk(const QByteArray& type, std::initializer_list<quint32> numbers) {
    QByteArray content(qsizetype(numbers.size()) * 4, '\0');
    char* place = content.data();
    for (const quint32 number : numbers) {
        qToBigEndian(number, place);
        place += 4;
    }
    return pngChunk(type, content);
}

/// `png` with more chunks behind its header.
inline QByteArray withChunks(QByteArray png, const QByteArray& chunks) {
    constexpr qsizetype headerEnd = 8 + 25;
    return png.insert(headerEnd, chunks);
}

} // namespace framora
