#include "editor/render/JpegFrame.h"

#include <QtEndian>
#include <algorithm>

namespace framora {
namespace {

constexpr int startOfScan = 0xda;

bool isFrame(int marker) {
    // C4, C8 and CC among them are tables and a reserved one.
    return marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8 && marker != 0xcc;
}

bool isProgressive(int marker) {
    return (marker & 3) == 2;
}

/// The segment's marker, its content left to read; 0 at the end or where there is none.
int nextSegment(QIODevice& file, qint64& contentBytes) {
    char byte = 0;
    if (!file.getChar(&byte) || uchar(byte) != 0xff)
        return 0;
    while (uchar(byte) == 0xff)
        if (!file.getChar(&byte))
            return 0;
    char length[2];
    if (file.read(length, sizeof length) != sizeof length)
        return 0;
    contentBytes = qint64(qFromBigEndian<quint16>(length)) - 2;
    return contentBytes >= 0 ? uchar(byte) : 0;
}

/// Size and sampling, from the content of a frame's header.
std::optional<JpegFrame> parsed(const QByteArray& header, int& components) {
    constexpr int mostSampling = 4;
    if (header.size() < 6)
        return {};
    JpegFrame frame;
    frame.size = {qFromBigEndian<quint16>(header.constData() + 3),
                  qFromBigEndian<quint16>(header.constData() + 1)};
    components = uchar(header[5]);
    if (components < 1 || header.size() < 6 + components * 3)
        return {};
    int most[2] = {1, 1};
    int samples = 0;
    for (int i = 0; i < components; ++i) {
        const int sampling = uchar(header[7 + i * 3]);
        const int across = sampling >> 4;
        const int down = sampling & 15;
        if (across < 1 || down < 1 || across > mostSampling || down > mostSampling)
            return {};
        most[0] = std::max(most[0], across);
        most[1] = std::max(most[1], down);
        samples += across * down;
    }
    frame.samplesPerPixel = double(samples) / (most[0] * most[1]);
    return frame;
}

} // namespace

qint64 JpegFrame::coefficientBytes() const {
    constexpr int widestBlock = 32; // pixels; sizes are rounded up to blocks
    const auto whole = [](int side) { return qint64(side + widestBlock); };
    return isInPasses ? qint64(double(whole(size.width()) * whole(size.height())) * samplesPerPixel * 2) : 0;
}

std::optional<JpegFrame> JpegFrame::read(QIODevice& file) {
    constexpr int mostSegments = 4096;
    std::optional<JpegFrame> frame;
    int components = 0;
    if (!file.seek(2))
        return {};
    for (int i = 0; i < mostSegments; ++i) {
        qint64 bytes = 0;
        const int marker = nextSegment(file, bytes);
        if (marker == startOfScan) {
            char scanned = 0;
            if (frame && file.getChar(&scanned))
                frame->isInPasses = frame->isInPasses || uchar(scanned) < components;
            return frame;
        }
        const qint64 next = file.pos() + bytes;
        if (isFrame(marker)) {
            frame = parsed(file.read(bytes), components);
            if (!frame)
                return {};
            frame->isInPasses = isProgressive(marker);
        }
        if (marker == 0 || !file.seek(next))
            return {};
    }
    return {};
}

} // namespace framora
