#include "editor/render/RowReducer.h"

#include <cstring>

namespace framora {
RowReducer::RowReducer(QSize size, int factor, QImage::Format format)
    : m_factor(factor), m_sums(size.width(), QImage::toPixelFormat(format).bitsPerPixel() / 8, factor),
      m_result(size.width() / factor, size.height() / factor, format) {}

void RowReducer::add(const uchar* row) {
    const int y = m_rows++ / m_factor;
    if (y >= m_result.height())
        return;
    if (m_factor == 1) {
        std::memcpy(m_result.scanLine(y), row, m_sums.size());
        return;
    }
    m_sums.add(row);
    if (m_rows % m_factor == 0)
        m_sums.take({m_result.scanLine(y), m_sums.size()});
}

} // namespace framora
