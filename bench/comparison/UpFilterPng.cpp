#include "UpFilterPng.h"

#ifdef FRAMORA_COMPARE_LIBDEFLATE

#include <QtEndian>
#include <libdeflate.h>
#include <memory>
#include <vector>

namespace framora::comparison {
namespace {

void appendNumber(QByteArray& bytes, quint32 number) {
    const quint32 stored = qToBigEndian(number);
    bytes.append(reinterpret_cast<const char*>(&stored), sizeof stored);
}

void appendChunk(QByteArray& file, const char* type, const QByteArray& data) {
    appendNumber(file, quint32(data.size()));
    const qsizetype checked = file.size();
    file.append(type, 4);
    file.append(data);
    appendNumber(file, libdeflate_crc32(0, file.constData() + checked, std::size_t(file.size() - checked)));
}

std::vector<uchar> filteredRows(const QImage& picture) {
    constexpr uchar up = 2;
    const std::size_t rowBytes = std::size_t(picture.width()) * 3;
    std::vector<uchar> rows((rowBytes + 1) * std::size_t(picture.height()));
    std::vector<uchar> above(rowBytes, 0);
    std::vector<uchar> row(rowBytes);
    uchar* to = rows.data();
    for (int y = 0; y < picture.height(); ++y) {
        const auto* pixels = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            row[std::size_t(x) * 3] = uchar(qRed(pixels[x]));
            row[std::size_t(x) * 3 + 1] = uchar(qGreen(pixels[x]));
            row[std::size_t(x) * 3 + 2] = uchar(qBlue(pixels[x]));
        }
        *to++ = up;
        for (std::size_t i = 0; i < rowBytes; ++i)
            *to++ = uchar(row[i] - above[i]);
        row.swap(above);
    }
    return rows;
}

} // namespace

bool hasUpFilterPng() {
    return true;
}

QByteArray encodeUpFilterPng(const QImage& picture) {
    constexpr int level = 4;
    const std::vector<uchar> rows = filteredRows(picture);
    const std::unique_ptr<libdeflate_compressor, void (*)(libdeflate_compressor*)> compressor(
        libdeflate_alloc_compressor(level), libdeflate_free_compressor);
    QByteArray packed(qsizetype(libdeflate_zlib_compress_bound(compressor.get(), rows.size())),
                      Qt::Uninitialized);
    packed.resize(qsizetype(libdeflate_zlib_compress(compressor.get(), rows.data(), rows.size(),
                                                     packed.data(), std::size_t(packed.size()))));
    QByteArray header;
    appendNumber(header, quint32(picture.width()));
    appendNumber(header, quint32(picture.height()));
    header.append("\x08\x02\x00\x00\x00", 5); // eight bits, three channels, not interlaced
    QByteArray file("\x89PNG\r\n\x1a\n", 8);
    appendChunk(file, "IHDR", header);
    appendChunk(file, "IDAT", packed);
    appendChunk(file, "IEND", {});
    return file;
}

} // namespace framora::comparison

#else

namespace framora::comparison {

bool hasUpFilterPng() {
    return false;
}

QByteArray encodeUpFilterPng(const QImage&) {
    return {};
}

} // namespace framora::comparison

#endif
