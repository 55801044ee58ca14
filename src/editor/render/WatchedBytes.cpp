#include "editor/render/WatchedBytes.h"

#include <algorithm>
#include <cstring>

namespace framora {

WatchedBytes::WatchedBytes(const QByteArray& bytes, DecodingWatch& watch, qint64 pieceBytes)
    : m_bytes(bytes), m_watch(watch), m_pieceBytes(pieceBytes) {
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

qint64 WatchedBytes::readData(char* data, qint64 most) {
    if (m_watch.isOver())
        return -1;
    const qint64 count = std::min({most, m_pieceBytes, m_bytes.size() - pos()});
    if (count <= 0)
        return 0;
    std::memcpy(data, m_bytes.constData() + pos(), std::size_t(count));
    return count;
}

} // namespace framora
