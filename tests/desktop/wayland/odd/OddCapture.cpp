#include "desktop/wayland/odd/OddCapture.h"

#include "desktop/support/ScriptedClipboard.h"

#include <fcntl.h>
#include <linux/input-event-codes.h>
#include <poll.h>
#include <unistd.h>

namespace framora {

OddCapture::~OddCapture() {
    // Somebody else's copy ends the process that serves the clipboard.
    compositor.perform([](ScriptedPieces& pieces) { pieces.clipboard->offer({{"text/plain"}, {}}); });
    EXPECT_EQ(compositor.leftovers(), QStringList());
    EXPECT_TRUE(DesktopSession::waitFor([&] { return compositor.clients() == 0; }));
    EXPECT_EQ(compositor.layerSurfaces(), 0);
}

ChildProcess& OddCapture::launch(const QString& mode) {
    m_tool = &descriptors.launch(compositor, QStringLiteral(FRAMORA_SCREENCAPTURE), {mode});
    return *m_tool;
}

ChildProcess* OddCapture::open(const QStringList& outputs) {
    ChildProcess& tool = launch();
    for (const QString& output : outputs)
        DesktopSession::waitFor([&] { return !tool.isRunning() || overlayOn(output); });
    return tool.isRunning() ? &tool : nullptr;
}

void OddCapture::drag(QPoint from, QPoint to, const QString& output) {
    compositor.pointTo(from, output);
    compositor.press(BTN_LEFT);
    compositor.pointTo((from + to) / 2, output);
    compositor.pointTo(to, output);
    compositor.release(BTN_LEFT);
}

QImage OddCapture::clipboard() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return {};
    compositor.perform([&](ScriptedPieces& pieces) { pieces.clipboard->receive("image/png", ends[1]); });
    QByteArray bytes;
    char part[4096];
    pollfd input{ends[0], POLLIN, 0};
    while (poll(&input, 1, 10000) > 0) {
        const ssize_t count = read(ends[0], part, sizeof part);
        if (count <= 0)
            break;
        bytes.append(part, count);
    }
    close(ends[0]);
    return QImage::fromData(bytes, "PNG");
}

testing::AssertionResult OddCapture::endsWith(int code, const char* text, int milliseconds) {
    if (!m_tool->waitForExit(milliseconds)) {
        m_tool->kill();
        return testing::AssertionFailure() << "it still runs after " << milliseconds << " ms";
    }
    const QByteArray output = m_tool->output();
    const int lines = int(output.count('\n'));
    if (m_tool->exitCode() != code || !output.contains(text) || lines != (code == 3 ? 1 : 0))
        return testing::AssertionFailure() << "code " << m_tool->exitCode() << " instead of " << code
                                           << ", having said \"" << output.toStdString() << '"';
    return testing::AssertionSuccess();
}

testing::AssertionResult OddCapture::givesUp() {
    if (!m_tool->waitForExit())
        return endsWith(3);
    return endsWith(m_tool->exitCode() == 1 ? 1 : 3);
}

testing::AssertionResult OddCapture::takes(QRect area, const QImage& expected, const QString& output) {
    drag(area.topLeft(), area.topLeft() + QPoint(area.width(), area.height()), output);
    if (const auto ended = endsWith(0); !ended)
        return ended;
    return samePixels(clipboard(), expected);
}

testing::AssertionResult samePixels(const QImage& actual, const QImage& expected) {
    if (actual.size() != expected.size())
        return testing::AssertionFailure() << actual.width() << "x" << actual.height() << " instead of "
                                           << expected.width() << "x" << expected.height();
    for (int y = 0; y < actual.height(); ++y)
        for (int x = 0; x < actual.width(); ++x)
            if (actual.pixel(x, y) != expected.pixel(x, y))
                return testing::AssertionFailure()
                       << "at " << x << "," << y << ": " << std::hex << actual.pixel(x, y) << " instead of "
                       << expected.pixel(x, y);
    return testing::AssertionSuccess();
}

} // namespace framora
