#pragma once

#include "editor/render/decoders/BoxSums.h"

#include <QImage>
#include <QSize>
#include <utility>

namespace framora {

/// Makes a picture small while its rows are decoded: squares of pixels become one each. A scaler's filters
/// would take their time over millions of pixels that come to thousands.
class RowReducer {
public:
    /// The whole picture's size, and what each side is divided by: 1 to 256, and no more than the side. The
    /// format is one of bytes, as RGB888 or RGB32.
    RowReducer(QSize size, int factor, QImage::Format format);

    /// The next row, in the format's pixels.
    void add(const uchar* row);
    /// The reduced picture once all rows are there; null when memory is short.
    QImage take() { return std::move(m_result); }

private:
    int m_factor;
    int m_rows = 0;
    BoxSums<std::uint8_t> m_sums;
    QImage m_result;
};

} // namespace framora
