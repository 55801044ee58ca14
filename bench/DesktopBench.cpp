// How long the whole path takes on a virtual desktop, step by step, as a person would see it:
//     desktop_bench [ROUNDS [start|capture|editor]]
// Prints medians. The aims are those of an ordinary machine; nothing here passes or fails.
#include "desktop/path/DemoDesktop.h"
#include "desktop/path/FramoraDriver.h"

#include <QDBusConnection>
#include <QDBusInterface>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QUuid>

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace framora {
namespace {

using Times = std::vector<double>;

double median(Times times) {
    if (times.empty())
        return 0;
    std::sort(times.begin(), times.end());
    const std::size_t middle = times.size() / 2;
    return times.size() % 2 ? times[middle] : (times[middle - 1] + times[middle]) / 2;
}

void print(const char* what, const Times& times, const char* unit, const char* aim) {
    std::printf("%-52s %8.1f %s   %s\n", what, median(times), unit, aim);
    std::fflush(stdout);
}

/// Milliseconds until `condition` holds, looked at without a pause; throws after ten seconds.
double millisecondsUntil(const QElapsedTimer& since, const char* what,
                         const std::function<bool()>& condition) {
    while (!condition()) {
        if (since.elapsed() > 10000)
            throw std::runtime_error(std::string("did not see: ") + what);
        std::this_thread::yield();
    }
    return double(since.nsecsElapsed()) / 1e6;
}

DesktopOptions desktopOptions() {
    DesktopOptions options;
    options.size = {2560, 1440};
    return options;
}

/// From the start of the process until the tray's watcher knows the item, and the memory it rests at.
void measureStart(int rounds) {
    DesktopOptions options = desktopOptions();
    options.trayHost = TrayHost::xfcePanel;
    VirtualDesktop desktop(options);
    const QString name = QUuid::createUuid().toString();
    Times registered;
    Times resident;
    {
        auto bus = QDBusConnection::connectToBus(desktop.busAddress(), name);
        QDBusInterface watcher(QStringLiteral("org.kde.StatusNotifierWatcher"),
                               QStringLiteral("/StatusNotifierWatcher"),
                               QStringLiteral("org.kde.StatusNotifierWatcher"), bus);
        const auto items = [&] {
            return watcher.property("RegisteredStatusNotifierItems").toStringList().size();
        };
        for (int round = 0; round < rounds; ++round) {
            if (!VirtualDesktop::waitFor([&] { return items() == 0; }))
                throw std::runtime_error("an item stayed in the tray");
            QElapsedTimer timer;
            timer.start();
            ChildProcess& framora = desktop.start(FramoraDriver::program(QStringLiteral("framora")));
            registered.push_back(millisecondsUntil(timer, "the tray item", [&] { return items() > 0; }));
            // Rest: what start-up left for later has run.
            VirtualDesktop::waitFor([] { return false; }, 1500);
            resident.push_back(double(framora.residentKilobytes()) / 1024);
            framora.end();
        }
    }
    QDBusConnection::disconnectFromBus(name);
    print("start -> tray registered", registered, "ms", "");
    print("idle resident memory", resident, "MB", "aim 32");
}

qint64 captureToolOf(ChildProcess& framora) {
    for (const qint64 child : framora.children())
        if (ChildProcess::nameOf(child).startsWith(QStringLiteral("framora-screen")))
            return child;
    return 0;
}

bool hasExited(qint64 pid) {
    QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!file.open(QIODevice::ReadOnly))
        return true;
    const QByteArray line = file.readAll();
    return line.mid(line.lastIndexOf(')') + 2, 1) == "Z";
}

/// The capture itself: the first round is a warm-up that also tells where the toast stands.
void measureCapture(int rounds) {
    VirtualDesktop desktop(desktopOptions());
    FramoraDriver driver(desktop);
    DesktopDisplay& display = desktop.display();
    display.setWallpaper(demoWallpaper(display.size()));
    ChildProcess& framora = driver.launch();
    const QPoint probe(1200, 60);
    const QRect area(400, 300, 900, 600);
    QPoint cardCenter;
    Times overlay, owned, toast;
    for (int round = 0; round <= rounds; ++round) {
        driver.waitForNoToast();
        const QColor plain = display.pixelAt(probe);
        display.moveTo(area.topLeft());
        display.keyDown("Shift_L");
        display.keyDown("Alt_L");
        QElapsedTimer timer;
        timer.start();
        display.keyDown("4");
        const double shown =
            millisecondsUntil(timer, "the overlay", [&] { return display.pixelAt(probe) != plain; });
        display.keyUp("4");
        display.keyUp("Alt_L");
        display.keyUp("Shift_L");

        const qint64 tool = captureToolOf(framora);
        display.press();
        for (int step = 1; step <= 8; ++step)
            display.moveTo(area.topLeft() + QPoint(area.width(), area.height()) * step / 8);
        const auto before = display.selectionOwner("CLIPBOARD");
        timer.start();
        display.release();
        const double taken = millisecondsUntil(timer, "the clipboard's new owner", [&] {
            const auto now = display.selectionOwner("CLIPBOARD");
            return now && now != before;
        });
        millisecondsUntil(timer, "the tool's end", [&] { return hasExited(tool); });
        timer.start();
        double seen = 0;
        if (round == 0) {
            cardCenter = driver.waitForInteractiveToast().center();
        } else {
            const QColor beneath = display.pixelAt(cardCenter);
            seen = millisecondsUntil(timer, "the toast", [&] {
                return display.pixelAt(cardCenter) != beneath || driver.toast().has_value();
            });
            overlay.push_back(shown);
            owned.push_back(taken);
            toast.push_back(seen);
        }
    }
    print("shortcut -> overlay visible, 2560x1440", overlay, "ms", "aim 120");
    print("mouse release -> clipboard owned, 900x600", owned, "ms", "aim 100");
    print("tool exit -> toast visible", toast, "ms", "aim 60");
}

/// The editor: when its header stands as it stays, when the whole window does, and how long a drag's step
/// takes.
void measureEditor(int rounds) {
    VirtualDesktop desktop(desktopOptions());
    FramoraDriver driver(desktop);
    DesktopDisplay& display = desktop.display();
    display.setWallpaper(demoWallpaper(display.size()));
    driver.launch();
    Times first, cold, whole, step;
    for (int round = 0; round <= rounds; ++round) {
        driver.waitForNoToast();
        driver.pressAreaShortcut();
        driver.waitForOverlay();
        driver.selectArea(QRect(400, 300, 900, 600));
        const QRect card = driver.waitForInteractiveToast();
        // Fully faded in, so that the click finds the toast at rest.
        VirtualDesktop::waitFor([] { return false; }, 300);

        std::vector<std::pair<double, QImage>> looks;
        const QSize screen = display.size();
        const QSize size(1600, 1000);
        const QRect window(QPoint((screen.width() - size.width()) / 2, (screen.height() - size.height()) / 2),
                           size);
        const QRect header(window.right() - 420, window.top(), 400, 48);
        const QRect middle(window.center() + QPoint(100, -40), QSize(200, 80));
        QElapsedTimer timer;
        timer.start();
        display.click(card.center());
        double sinceChange = 0;
        while (timer.elapsed() < 10000 && (looks.size() < 2 || double(timer.elapsed()) - sinceChange < 700)) {
            const double now = double(timer.nsecsElapsed()) / 1e6;
            QImage both(400, 128, QImage::Format_RGB32);
            both.fill(0);
            const QImage top = display.screenshot(header);
            const QImage center = display.screenshot(middle);
            std::copy_n(top.constBits(), top.sizeInBytes(), both.bits());
            std::copy_n(center.constBits(), center.sizeInBytes(), both.bits() + top.sizeInBytes());
            if (looks.empty() || looks.back().second != both) {
                looks.emplace_back(now, both);
                sinceChange = now;
            }
        }
        driver.waitForEditor();
        const auto headerOf = [&](const QImage& both) {
            return both.copy(0, 0, header.width(), header.height());
        };
        const QImage finalHeader = headerOf(looks.back().second);
        const auto frame = std::find_if(looks.begin(), looks.end(), [&](const auto& look) {
            return headerOf(look.second) == finalHeader;
        });
        (round == 0 ? cold : first).push_back(frame->first);
        if (round > 0)
            whole.push_back(looks.back().first);

        // A drag, one step at a time: each waits for the picture to follow.
        const QPoint grip = middle.center();
        display.moveTo(grip);
        display.press();
        QImage last = display.screenshot(middle);
        for (int i = 1; i <= 24; ++i) {
            timer.start();
            display.moveTo(grip + QPoint(4 * i, 3 * i));
            const double took = millisecondsUntil(timer, "the dragged picture", [&] {
                QImage now = display.screenshot(middle);
                const bool changed = now != last;
                last = std::move(now);
                return changed;
            });
            if (i > 4)
                step.push_back(took);
        }
        display.release();
        display.requestClose(driver.waitForEditor().id);
        driver.waitForNoEditor();
    }
    print("click on the toast -> editor's first frame", first, "ms", "aim 250");
    print("    the very first time", cold, "ms", "");
    print("    until background and picture stand as they stay", whole, "ms", "");
    print("pointer step -> preview frame on screen, dragging", step, "ms", "aim 16");
}

} // namespace
} // namespace framora

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 9;
    const std::string_view only = argc > 2 ? argv[2] : "";
    try {
        if (only.empty() || only == "start")
            framora::measureStart(rounds);
        if (only.empty() || only == "capture")
            framora::measureCapture(rounds);
        if (only.empty() || only == "editor")
            framora::measureEditor(only.empty() ? std::max(1, rounds / 2) : rounds);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "desktop_bench stopped: %s\n", failure.what());
        return 1;
    }
}
