#include "platform/wayland/WaylandPasteboard.h"

#include "platform/desktop/ClipboardKeeper.h"

#include <QClipboard>
#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QMimeData>
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace framora {

namespace {

const QString pngType = QStringLiteral("image/png");
/// For each part: a large picture may take long, a dead owner may not.
constexpr int silenceMilliseconds = 5000;
/// For all of it, whatever an owner dribbles.
constexpr int longestMilliseconds = 30000;
/// Larger than any screen's picture; more is a broken or hostile owner.
constexpr qsizetype maximumBytes = qsizetype(512) << 20;
/// What a pipe holds at most where nobody raised it.
constexpr int pipeBytes = 1 << 20;

/// All that comes out of a pipe until its other end is closed.
QByteArray readToEnd(int descriptor) {
    QByteArray bytes;
    qsizetype size = 0;
    const QDeadlineTimer patience(longestMilliseconds);
    for (;;) {
        pollfd input{descriptor, POLLIN, 0};
        const auto left = static_cast<int>(std::min<qint64>(silenceMilliseconds, patience.remainingTime()));
        const int ready = poll(&input, 1, left);
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0 || size >= maximumBytes)
            return {};
        if (bytes.size() - size < pipeBytes)
            bytes.resize(std::max(bytes.size() * 2, qsizetype(2 * pipeBytes)));
        const ssize_t count =
            ::read(descriptor, bytes.data() + size, static_cast<std::size_t>(bytes.size() - size));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return {};
        if (count == 0)
            break;
        size += count;
    }
    bytes.resize(size);
    bytes.squeeze();
    return bytes;
}

} // namespace

WaylandPasteboard::WaylandPasteboard(WaylandConnection& connection,
                                     std::unique_ptr<WaylandClipboard> clipboard, DecodePicture decodePicture)
    : m_connection(connection), m_clipboard(std::move(clipboard)), m_decodePicture(std::move(decodePicture)) {
}

std::int64_t WaylandPasteboard::changeCount() {
    m_connection.roundTrip();
    return m_clipboard->changes();
}

QImage WaylandPasteboard::readImage() {
    // A picture that Qt offers must not be asked for over the wire: nobody would answer while this thread
    // waits. What Qt believes to own may be as old as the last event that it has taken.
    const QClipboard& own = *QGuiApplication::clipboard();
    if (own.ownsClipboard() && own.mimeData() && own.mimeData()->hasFormat(pngType))
        return m_decodePicture(own.mimeData()->data(pngType));
    m_connection.roundTrip();
    const auto types = m_clipboard->types();
    for (const char* type : {"image/png", "image/tiff", "image/webp", "image/bmp", "image/jpeg"}) {
        if (std::ranges::find(types, type) == types.end())
            continue;
        if (QImage image = m_decodePicture(read(type)); !image.isNull())
            return image;
    }
    return {};
}

QByteArray WaylandPasteboard::read(const std::string& type) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return {};
    // Without the right to more it stays as it is.
    fcntl(ends[0], F_SETPIPE_SZ, pipeBytes);
    m_clipboard->receive(type, ends[1]);
    m_connection.flush();
    close(ends[1]);
    QByteArray bytes = readToEnd(ends[0]);
    close(ends[0]);
    return bytes;
}

void WaylandPasteboard::writePng(const QByteArray& png) {
    if (leaveWithClipboardKeeper(png))
        return;
    // While a window of ours has the focus the compositor takes it from Qt as well.
    auto data = std::make_unique<QMimeData>();
    data->setData(pngType, png);
    QGuiApplication::clipboard()->setMimeData(data.release());
}

} // namespace framora
