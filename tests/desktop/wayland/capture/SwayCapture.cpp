#include "desktop/wayland/capture/SwayCapture.h"

#include <QBuffer>
#include <stdexcept>

#include <stdexcept>

namespace framora {

namespace {

SwayOptions with(const std::vector<SwayOutput>& outputs) {
    SwayOptions options;
    options.outputs = outputs;
    return options;
}

/// The size as the user sees it, in device pixels.
QSize upright(const SwayOutput& output) {
    return output.transform.contains(QStringLiteral("90")) || output.transform.contains(QStringLiteral("270"))
               ? output.mode.transposed()
               : output.mode;
}

} // namespace

SwayCapture::SwayCapture(const std::vector<SwayOutput>& outputs)
    : m_desktop(with(outputs)), m_outputs(int(outputs.size())) {
    for (int i = 0; i < m_outputs; ++i) {
        const SwayOutput& output = outputs[std::size_t(i)];
        const QSize size = m_desktop.outputArea(i).size();
        m_backgrounds.push_back(std::make_unique<PaintedSurface>(
            m_desktop.waylandDisplay(),
            PaintedSurface::Options{
                PaintedSurface::pattern(upright(output), i + 1), size, {}, m_desktop.outputName(i)}));
        // An output whose pixels its scale does not divide shows the picture stretched a little.
        const QImage& pattern = m_backgrounds.back()->picture();
        if (QSizeF(size) * output.scale == QSizeF(upright(output))) {
            EXPECT_TRUE(SwayDesktop::waitFor([&] { return m_desktop.screenshot(i) == pattern; })) << i;
        }
        m_shown.push_back(m_desktop.settledScreenshot(i));
    }
}

SwayCapture::~SwayCapture() {
    // Another program's copy ends the process that serves the clipboard, the last that may be left.
    if (!m_ended)
        fillClipboard();
    const QStringList left = m_desktop.leftovers();
    EXPECT_TRUE(left.isEmpty()) << left.join(QStringLiteral(", ")).toStdString();
}

void SwayCapture::endCompositor() {
    m_ended = true;
    try {
        m_desktop.command(QStringLiteral("exit"));
    } catch (const std::runtime_error&) {
        // It may be gone before it can answer.
    }
}

ChildProcess& SwayCapture::launch(const QStringList& arguments) {
    return m_desktop.start(QStringLiteral(FRAMORA_SCREENCAPTURE), arguments);
}

ChildProcess* SwayCapture::open(const QString& mode) {
    std::vector<QImage> before;
    for (int i = 0; i < m_outputs; ++i)
        before.push_back(m_desktop.screenshot(i));
    ChildProcess& tool = launch({mode});
    for (int i = 0; i < m_outputs; ++i)
        SwayDesktop::waitFor(
            [&] { return !tool.isRunning() || m_desktop.screenshot(i) != before[std::size_t(i)]; });
    return tool.isRunning() ? &tool : nullptr;
}

int SwayCapture::exitCodeOf(ChildProcess& tool) {
    return tool.waitForExit() ? tool.exitCode() : -1;
}

int SwayCapture::toolProcesses() const {
    int count = 0;
    for (const qint64 pid : m_desktop.processes())
        count += ChildProcess::nameOf(pid).startsWith(QStringLiteral("framora-screenc"));
    return count;
}

bool SwayCapture::screenChangesFrom(const QImage& before, int output) {
    return SwayDesktop::waitFor([&] { return m_desktop.screenshot(output) != before; });
}

void SwayCapture::drag(const QPointF& from, const QPointF& to) {
    input().drag(from, to);
}

QByteArray SwayCapture::fillClipboard() {
    QImage image(9, 4, QImage::Format_RGB32);
    image.fill(QColor(12, 200, 90));
    QByteArray png;
    QBuffer buffer(&png);
    image.save(&buffer, "PNG");
    m_desktop.setClipboard(png, QStringLiteral("image/png"));
    return png;
}

std::unique_ptr<PaintedSurface> SwayCapture::show(const QRect& content, double scale, const QString& title,
                                                  int seed) {
    auto window = std::make_unique<PaintedSurface>(
        m_desktop.waylandDisplay(),
        PaintedSurface::Options{
            PaintedSurface::pattern(content.size() * scale, seed), content.size(), title, {}});
    // The compositor may tell of a window a moment after it has shown its first picture.
    std::optional<SwayWindow> told;
    if (!SwayDesktop::waitFor([&] { return (told = m_desktop.window(title)).has_value(); }))
        throw std::runtime_error("sway tells nothing of a window");
    m_desktop.place(*told, content);
    m_desktop.settledScreenshot();
    return window;
}

testing::AssertionResult samePicture(const QImage& actual, const QImage& expected) {
    if (actual.size() != expected.size())
        return testing::AssertionFailure() << actual.width() << "x" << actual.height() << " instead of "
                                           << expected.width() << "x" << expected.height();
    const QImage a = actual.convertToFormat(QImage::Format_ARGB32);
    const QImage b = expected.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if (a.pixel(x, y) != b.pixel(x, y))
                return testing::AssertionFailure() << "at " << x << "," << y << ": " << std::hex
                                                   << a.pixel(x, y) << " instead of " << b.pixel(x, y);
    return testing::AssertionSuccess();
}

} // namespace framora
