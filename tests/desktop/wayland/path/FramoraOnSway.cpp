#include "desktop/wayland/path/FramoraOnSway.h"

#include <cmath>
#include <csignal>

namespace framora {
namespace {

const QString applicationId = QStringLiteral("org.framora.Framora");

bool isFramoras(const SwayWindow& window) {
    return window.appId == applicationId ||
           window.xClass.contains(QStringLiteral("framora"), Qt::CaseInsensitive);
}

} // namespace

FramoraOnSway::FramoraOnSway(const SwayOptions& options) : m_options(options), m_desktop(options) {
    m_desktop.storeUnchangedSettings();
    for (int index = 0; index < int(options.outputs.size()); ++index) {
        const QSize size = m_desktop.outputArea(index).size();
        m_backgrounds.push_back(std::make_unique<PaintedSurface>(
            m_desktop.waylandDisplay(),
            PaintedSurface::Options{
                PaintedSurface::pattern(size * options.outputs[std::size_t(index)].scale, index + 1),
                size,
                {},
                m_desktop.outputName(index)}));
    }
    for (int index = 0; index < int(options.outputs.size()); ++index)
        waitForNothingInFront(index);
}

FramoraOnSway::~FramoraOnSway() = default;

SwayOptions FramoraOnSway::options(double scale, QSize size) {
    SwayOptions options;
    options.outputs = {{size * scale, scale, {0, 0}, QStringLiteral("normal")}};
    options.accessibility = true;
    return options;
}

QImage FramoraOnSway::backgroundPixels(const QRect& area, int output) {
    const double scale = m_options.outputs.at(std::size_t(output)).scale;
    const QRect local = area.translated(-m_desktop.outputArea(output).topLeft());
    return background(output).picture().copy(QRect(local.topLeft() * scale, local.size() * scale));
}

ChildProcess& FramoraOnSway::startFramora(const QStringList& arguments) {
    return m_desktop.start(QStringLiteral("env"),
                           m_unset + QStringList{program(QStringLiteral("framora"))} + arguments);
}

ChildProcess& FramoraOnSway::launch() {
    m_framora = &startFramora();
    require(QStringLiteral("Framora on the bus"),
            [&] { return !m_framora->isRunning() || m_desktop.serviceIsOnBus(applicationId); });
    require(QStringLiteral("Framora running"), [&] { return m_framora->isRunning(); });
    return *m_framora;
}

void FramoraOnSway::quit() {
    ::kill(pid_t(m_framora->pid()), SIGTERM);
    require(QStringLiteral("Framora's end"), [&] { return !m_framora->isRunning(); });
    EXPECT_EQ(m_framora->exitCode(), 0);
}

void FramoraOnSway::command(const QString& option) {
    ChildProcess& asking = startFramora({option});
    require(QStringLiteral("the end of framora ") + option, [&] { return !asking.isRunning(); });
    EXPECT_EQ(asking.exitCode(), 0) << asking.output().toStdString();
}

void FramoraOnSway::openCapture(const QString& option) {
    std::vector<QImage> before;
    for (int index = 0; index < int(m_backgrounds.size()); ++index)
        before.push_back(m_desktop.screenshot(index));
    command(option);
    for (int index = 0; index < int(m_backgrounds.size()); ++index)
        require(QStringLiteral("the overlay"), [&] {
            // Dimmed as a whole, whatever stood there before.
            const QImage now = m_desktop.screenshot(index);
            const QPoint corner(now.width() - 3, now.height() - 3);
            return now.pixel(corner) != before[std::size_t(index)].pixel(corner);
        });
}

void FramoraOnSway::waitForNoCapture() {
    require(QStringLiteral("the capture tool's end"), [&] { return captureTools().empty(); });
}

void FramoraOnSway::selectArea(const QRect& area) {
    input().drag(area.topLeft(), area.topLeft() + QPoint(area.width(), area.height()));
    waitForNoCapture();
}

QRect FramoraOnSway::inFront(int output) {
    const QImage shown = m_desktop.screenshot(output);
    const QImage& behind = background(output).picture();
    if (shown.size() != behind.size())
        return {};
    int left = shown.width();
    int right = -1;
    int top = -1;
    int bottom = -1;
    for (int y = 0; y < shown.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(shown.constScanLine(y));
        const auto* ground = reinterpret_cast<const QRgb*>(behind.constScanLine(y));
        for (int x = 0; x < shown.width(); ++x) {
            if (row[x] == ground[x])
                continue;
            left = std::min(left, x);
            right = std::max(right, x);
            top = top < 0 ? y : top;
            bottom = y;
        }
    }
    if (right < 0)
        return {};
    const double scale = m_options.outputs.at(std::size_t(output)).scale;
    const QPointF from(left / scale, top / scale);
    const QPointF to((right + 1) / scale, (bottom + 1) / scale);
    return QRectF(from, to).toAlignedRect().translated(m_desktop.outputArea(output).topLeft());
}

QRect FramoraOnSway::waitForToast(int output) {
    QRect last;
    int same = 0;
    require(QStringLiteral("a toast"), [&] {
        const QRect now = inFront(output);
        same = !now.isEmpty() && now == last ? same + 1 : 0;
        last = now;
        return same >= 2;
    });
    return last;
}

void FramoraOnSway::waitForNothingInFront(int output) {
    require(QStringLiteral("nothing in front"),
            [&] { return m_desktop.screenshot(output) == background(output).picture(); });
}

QRect FramoraOnSway::capture(const QRect& area, int output) {
    openCapture();
    selectArea(area);
    return waitForToast(output);
}

std::optional<SwayWindow> FramoraOnSway::editor() {
    for (const SwayWindow& window : m_desktop.windows())
        if (isFramoras(window) && window.title == QStringLiteral("Framora") && window.content.width() >= 600)
            return window;
    return {};
}

SwayWindow FramoraOnSway::waitForEditor() {
    require(QStringLiteral("the editor"), [&] { return editor().has_value(); });
    return *editor();
}

void FramoraOnSway::waitForNoEditor() {
    require(QStringLiteral("the editor going away"), [&] { return !editor(); });
}

SwayWindow FramoraOnSway::captureAndEdit(const QRect& area) {
    input().click(capture(area).center());
    return waitForEditor();
}

AccessibleNode FramoraOnSway::control(const QString& name, const QString& role) {
    AccessibleNode found = findControl(m_desktop.busAddress(), name, role);
    // A Wayland program does not know where its window is, an X program does.
    const SwayWindow window = waitForEditor();
    if (window.xClass.isEmpty())
        found.area.translate(window.content.topLeft());
    return found;
}

void FramoraOnSway::clickControl(const QString& name, const QString& role) {
    input().click(QRectF(control(name, role).area).center());
}

QImage FramoraOnSway::save(const QString& path) {
    clickControl(QStringLiteral("Save to File"));
    const auto dialog = [&]() -> std::optional<SwayWindow> {
        for (const SwayWindow& window : m_desktop.windows())
            if (isFramoras(window) && window.title != QStringLiteral("Framora"))
                return window;
        return {};
    };
    answerSaveDialog(
        input(), [&] { return dialog().has_value(); }, [&] { return dialog() && dialog()->focused; }, path);
    return QImage(path);
}

testing::AssertionResult FramoraOnSway::leavesNothing() {
    m_desktop.setClipboard("somebody else's", QStringLiteral("text/plain"));
    const QStringList left = m_desktop.leftovers();
    return left.isEmpty() ? testing::AssertionSuccess()
                          : testing::AssertionFailure() << left.join(QStringLiteral(", ")).toStdString();
}

} // namespace framora
