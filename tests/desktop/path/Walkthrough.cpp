// Takes the whole path on a virtual desktop by keys and clicks, and keeps what it saw:
//     framora-walkthrough FOLDER
// Exit 0 when every step did what it should, 1 otherwise.
#include "desktop/path/DemoDesktop.h"
#include "desktop/path/FramoraDriver.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>

#include <cstdio>
#include <stdexcept>

namespace framora {
namespace {

class Walkthrough {
public:
    explicit Walkthrough(const QString& folder) : m_folder(QDir(folder).absolutePath()) {
        DesktopOptions options;
        options.size = {1600, 1000};
        options.compositor = true;
        options.trayHost = TrayHost::xfcePanel;
        options.accessibility = true;
        say("a desktop without a screen comes up");
        m_desktop = std::make_unique<VirtualDesktop>(options);
        m_driver = std::make_unique<FramoraDriver>(*m_desktop);
    }

    void run() {
        openTerminal();
        m_driver->launch();
        say("Framora runs and answers its shortcuts");
        takeArea();
        openEditor();
        dress();
        saveIt();
    }

private:
    DesktopDisplay& display() { return m_desktop->display(); }

    void say(const char* what) {
        std::printf("  %d. %s\n", ++m_step, what);
        std::fflush(stdout);
    }

    void keep(const char* name, const QImage& image) {
        const QString path = m_folder + QLatin1Char('/') + QLatin1String(name);
        if (!image.save(path))
            throw std::runtime_error("cannot write " + path.toStdString());
        m_kept << path;
    }

    void require(const char* what, const std::function<bool()>& condition) {
        if (!VirtualDesktop::waitFor(condition))
            throw std::runtime_error(std::string("did not see: ") + what);
    }

    void openTerminal() {
        display().setWallpaper(demoWallpaper(display().size()));
        const QString script = m_desktop->scratchPath() + QStringLiteral("/show.sh");
        QFile file(script);
        if (!file.open(QIODevice::WriteOnly))
            throw std::runtime_error("cannot write the terminal's script");
        file.write("stty -echo\nprintf '\\033[1;32m~/pictures\\033[0m $ \\033[1mframora-render "
                   "--help\\033[0m\\n'\n");
        file.write(FramoraDriver::program(QStringLiteral("framora-render")).toUtf8());
        file.write(" --help 2>&1 | head -29\n"
                   "printf '\\033[1;32m~/pictures\\033[0m $ '\n"
                   "touch shown\nexec sleep 100000\n");
        file.close();
        auto& terminal =
            m_desktop->start(QStringLiteral("xterm"),
                             {QStringLiteral("-xrm"),
                              QStringLiteral("*wmTimeout: 100"),
                              QStringLiteral("-fa"),
                              QStringLiteral("DejaVu Sans Mono"),
                              QStringLiteral("-fs"),
                              QStringLiteral("11"),
                              QStringLiteral("-bg"),
                              QStringLiteral("#1d2430"),
                              QStringLiteral("-fg"),
                              QStringLiteral("#d8dee9"),
                              QStringLiteral("-b"),
                              QStringLiteral("14"),
                              QStringLiteral("-geometry"),
                              QStringLiteral("116x31+240+130"),
                              QStringLiteral("-title"),
                              QStringLiteral("Terminal"),
                              QStringLiteral("-e"),
                              QStringLiteral("sh"),
                              QStringLiteral("-c"),
                              QStringLiteral("cd '%1' && sh '%2'").arg(m_desktop->scratchPath(), script)});
        require("the terminal", [&] {
            return terminal.isRunning() && display().windowTitled(QStringLiteral("Terminal")) &&
                   QFile::exists(m_desktop->scratchPath() + QStringLiteral("/shown"));
        });
        const auto window = display().windowTitled(QStringLiteral("Terminal"));
        require("the terminal's focus", [&] { return display().activeWindow() == window->id; });
        say("a terminal has the focus");
        m_terminal = *window;
    }

    void takeArea() {
        m_driver->pressAreaShortcut();
        m_driver->waitForOverlay();
        say("Shift+Alt+4: the screen is frozen, the capture tool waits");
        m_area = m_terminal.frame.adjusted(0, 0, 1, 1);
        const QPoint end = m_area.bottomRight();
        display().moveTo(m_area.topLeft());
        display().press();
        for (int i = 1; i <= 12; ++i)
            display().moveTo(m_area.topLeft() + (end - m_area.topLeft()) * i / 12);
        settle();
        keep("1-overlay.png", display().screenshot());
        display().release();
        m_driver->waitForNoOverlay();
        say("an area is dragged and taken");
    }

    /// Until two looks at the screen, a few frames apart, agree.
    void settle() {
        QImage last;
        QElapsedTimer since;
        require("a screen at rest", [&] {
            if (since.isValid() && since.elapsed() < 80)
                return false;
            since.start();
            QImage now = display().screenshot();
            const bool same = now == last;
            last = std::move(now);
            return same;
        });
    }

    void openEditor() {
        const QRect card = m_driver->waitForInteractiveToast();
        settle();
        display().moveTo(card.center());
        settle();
        keep("2-toast.png", display().screenshot());
        say("the toast shows the picture");
        display().click(card.center());
        m_driver->waitForEditor();
        m_driver->control(QStringLiteral("Save to File"));
        m_driver->waitForNoToast();
        settle();
        say("a click on it opens the editor");
    }

    void dress() {
        m_driver->showTab(QStringLiteral("Background"));
        m_driver->clickControl(QStringLiteral("Gradient"));
        m_driver->clickControl(QStringLiteral("Midnight Surge"));
        settle();
        const QImage before = display().screenshot();
        const QRect canvas = m_driver->control(QStringLiteral("Preview")).area;
        display().drag(canvas.center(), canvas.center() + QPoint(36, 24), 12);
        settle();
        if (display().screenshot(canvas) == before.copy(canvas))
            throw std::runtime_error("dragging the screenshot changed nothing");
        keep("3-editor.png", display().screenshot());
        say("a gradient behind it, and the screenshot dragged to its place");
    }

    void saveIt() {
        const QString path = m_folder + QStringLiteral("/screenshot.png");
        QFile::remove(path);
        m_driver->save(path);
        m_kept << path;
        const QImage saved(path);
        std::printf("  %d. saved: %d x %d pixels\n", ++m_step, saved.width(), saved.height());
        std::printf("\nLook at\n");
        for (const QString& picture : m_kept)
            std::printf("    %s\n", qPrintable(picture));
    }

    QString m_folder;
    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<FramoraDriver> m_driver;
    DesktopWindow m_terminal;
    QRect m_area;
    QStringList m_kept;
    int m_step = 0;
};

} // namespace
} // namespace framora

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    if (argc != 2 || !QDir().mkpath(QString::fromLocal8Bit(argv[1]))) {
        std::fprintf(stderr, "usage: framora-walkthrough FOLDER\n");
        return 1;
    }
    try {
        framora::Walkthrough(QString::fromLocal8Bit(argv[1])).run();
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "The walkthrough stopped: %s\n", failure.what());
        return 1;
    }
}
