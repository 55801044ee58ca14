#include "editor/render/TiffCompleteness.h"

#include <QtEndian>
#include <algorithm>

namespace framora {
namespace {

/// The directory of a classic or big TIFF file of either byte order. What lies beyond the end reads as
/// `isBeyond`.
class TiffReader {
public:
    explicit TiffReader(QByteArrayView file)
        : m_file(file), m_isLittle(file.startsWith("II")), m_isBig(number(2, 2) == 43) {}

    bool isTiff() const {
        return m_file.size() >= 8 && (m_file.startsWith("II") || m_file.startsWith("MM")) &&
               (m_isBig || number(2, 2) == 42);
    }
    bool isBeyond() const { return m_isBeyond; }

    /// Follows the first directory to its strips or tiles.
    void visit() {
        const int wordBytes = m_isBig ? 8 : 4;
        const quint64 directory = number(m_isBig ? 8 : 4, wordBytes);
        const int countBytes = m_isBig ? 8 : 2;
        const quint64 entryBytes = m_isBig ? 20 : 12;
        const quint64 entries = number(directory, countBytes);
        Array offsets;
        Array sizes;
        for (quint64 i = 0; i < entries && !m_isBeyond; ++i) {
            const quint64 at = directory + quint64(countBytes) + i * entryBytes;
            switch (number(at, 2)) {
            case stripOffsets:
            case tileOffsets:
                offsets = array(at);
                break;
            case stripSizes:
            case tileSizes:
                sizes = array(at);
                break;
            }
        }
        const quint64 pieces = std::min(offsets.count, sizes.count);
        for (quint64 i = 0; i < pieces && !m_isBeyond; ++i) {
            const quint64 size = element(sizes, i);
            const quint64 offset = element(offsets, i);
            if (size > quint64(m_file.size()) || offset > quint64(m_file.size()) - size)
                m_isBeyond = true;
        }
    }

private:
    enum Tag { stripOffsets = 273, stripSizes = 279, tileOffsets = 324, tileSizes = 325 };

    struct Array {
        quint64 at = 0;
        quint64 count = 0;
        int elementBytes = 0;
    };

    quint64 number(quint64 at, int bytes) const {
        if (at > quint64(m_file.size()) || quint64(m_file.size()) - at < quint64(bytes)) {
            m_isBeyond = true;
            return 0;
        }
        const char* data = m_file.data() + at;
        switch (bytes) {
        case 2:
            return m_isLittle ? qFromLittleEndian<quint16>(data) : qFromBigEndian<quint16>(data);
        case 4:
            return m_isLittle ? qFromLittleEndian<quint32>(data) : qFromBigEndian<quint32>(data);
        default:
            return m_isLittle ? qFromLittleEndian<quint64>(data) : qFromBigEndian<quint64>(data);
        }
    }

    /// The numbers of the directory entry at this place; few enough stand in the entry itself.
    Array array(quint64 entry) const {
        constexpr quint64 shortType = 3;
        constexpr quint64 longType = 4;
        const quint64 type = number(entry + 2, 2);
        const int wordBytes = m_isBig ? 8 : 4;
        Array result;
        result.elementBytes = type == shortType ? 2 : type == longType ? 4 : 8;
        result.count = number(entry + 4, wordBytes);
        result.at = entry + 4 + quint64(wordBytes);
        if (result.count > quint64(m_file.size())) {
            m_isBeyond = true;
            return {};
        }
        if (result.count * quint64(result.elementBytes) > quint64(wordBytes))
            result.at = number(result.at, wordBytes);
        return result;
    }

    quint64 element(const Array& array, quint64 index) const {
        return number(array.at + index * quint64(array.elementBytes), array.elementBytes);
    }

    QByteArrayView m_file;
    mutable bool m_isBeyond = false;
    bool m_isLittle;
    bool m_isBig;
};

} // namespace

bool isCutOffTiff(QByteArrayView file) {
    TiffReader reader(file);
    if (!reader.isTiff())
        return false;
    reader.visit();
    return reader.isBeyond();
}

} // namespace framora
