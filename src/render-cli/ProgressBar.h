#pragma once

#include <QByteArray>
#include <cstdio>

namespace framora {

/// One line at the foot of a terminal that says how many of `total` are done. It draws nothing where the
/// stream is not a terminal. From one thread at a time.
class ProgressBar {
public:
    ProgressBar(std::FILE* stream, int total, bool isWanted);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void setDone(int done);
    /// Writes a line above the bar.
    void writeLine(const QByteArray& line);

    /// The bar itself: "[#####     ] 5/10" within `columns` columns.
    static QByteArray barText(int done, int total, int columns);

private:
    void draw();
    void erase();

    std::FILE* const m_stream;
    const int m_total;
    const bool m_isShown;
    int m_done = 0;
};

} // namespace framora
