#include "render-cli/ProgressBar.h"

#include <algorithm>
#include <sys/ioctl.h>
#include <unistd.h>

namespace framora {
namespace {

int columnsOf(std::FILE* stream) {
    winsize size{};
    return ioctl(fileno(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

} // namespace

ProgressBar::ProgressBar(std::FILE* stream, int total, bool isWanted)
    : m_stream(stream), m_total(total), m_isShown(isWanted && total > 0 && isatty(fileno(stream))) {
    draw();
}

ProgressBar::~ProgressBar() {
    erase();
}

void ProgressBar::setDone(int done) {
    m_done = done;
    draw();
}

void ProgressBar::writeLine(const QByteArray& line) {
    erase();
    std::fwrite(line.constData(), 1, std::size_t(line.size()), m_stream);
    std::fputc('\n', m_stream);
    std::fflush(m_stream);
    draw();
}

QByteArray ProgressBar::barText(int done, int total, int columns) {
    const QByteArray count = QByteArray::number(done) + '/' + QByteArray::number(total);
    const int width = std::min(40, columns - 4 - int(count.size()));
    if (width < 5)
        return count.left(std::max(0, columns - 1));
    const int filled = int(qint64(width) * std::clamp(done, 0, total) / std::max(1, total));
    return '[' + QByteArray(filled, '#') + QByteArray(width - filled, ' ') + "] " + count;
}

void ProgressBar::draw() {
    if (!m_isShown)
        return;
    const QByteArray text = '\r' + barText(m_done, m_total, columnsOf(m_stream)) + "\x1b[K";
    std::fwrite(text.constData(), 1, std::size_t(text.size()), m_stream);
    std::fflush(m_stream);
}

void ProgressBar::erase() {
    if (!m_isShown)
        return;
    std::fputs("\r\x1b[K", m_stream);
    std::fflush(m_stream);
}

} // namespace framora
