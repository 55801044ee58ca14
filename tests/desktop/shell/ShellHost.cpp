// The program's X11 side on its own, obeying a test over standard input. Every line printed is one event or
// one answer. Commands:
//
//   count                  the clipboard's change count
//   read                   the clipboard's picture
//   busy-read FILE         the same, but without serving the event loop from now until FILE exists
//   write W H              offers a picture of that size; prints the count before and after
//   busy-write FILE W H    the same, but without serving the event loop from now until FILE exists
//   window TITLE           opens a window with a text field
//   text                   what the field holds
//   close                  closes the window
//   policy regular|accessory
//   activate
//   dialogue               opens another window
//   front                  says that the window with the field is the front one, and activates
//   watch, unwatch         a global and a local monitor; the local one consumes the key X
//   gate close|open
//   busy-quit FILE         quits without having served the event loop from now until FILE exists
//   quit
#include "editor/render/PictureFile.h"
#include "platform/CommandGate.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "platform/x11/X11Application.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11KeyMonitors.h"
#include "platform/x11/X11Pasteboard.h"
#include "platform/x11/X11Permissions.h"

#include <QApplication>
#include <QBuffer>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QSocketNotifier>
#include <QThread>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <map>
#include <optional>
#include <unistd.h>

using namespace framora;

namespace {

constexpr std::uint16_t keyX = 7;

template <class... Arguments> void say(const char* format, Arguments... arguments) {
    std::printf(format, arguments...);
    std::printf("\n");
    std::fflush(stdout);
}

class ShellHost {
public:
    ShellHost() {
        m_active = m_notifications.observe(notifications::applicationDidBecomeActive, [] { say("active"); });
        QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, [](Qt::ApplicationState state) {
            if (state == Qt::ApplicationInactive)
                say("inactive");
        });
    }

    void obey(const QString& line) {
        const QStringList words = line.split(u' ');
        const QString argument = words.value(1);
        const std::map<QString, std::function<void()>> commands{
            {QStringLiteral("count"), [&] { say("count %lld", count()); }},
            {QStringLiteral("read"), [&] { read(); }},
            {QStringLiteral("busy-read"),
             [&] {
                 beBusyUntil(argument);
                 read();
             }},
            {QStringLiteral("write"), [&] { write(argument.toInt(), words.value(2).toInt()); }},
            {QStringLiteral("busy-write"),
             [&] {
                 beBusyUntil(argument);
                 write(words.value(2).toInt(), words.value(3).toInt());
             }},
            {QStringLiteral("window"), [&] { openWindow(argument); }},
            {QStringLiteral("text"), [&] { say("text %s", qPrintable(m_field->text())); }},
            {QStringLiteral("close"), [&] { m_field.reset(); }},
            {QStringLiteral("policy"),
             [&] {
                 m_application.setActivationPolicy(argument == u"regular" ? ActivationPolicy::regular
                                                                          : ActivationPolicy::accessory);
                 say("policy %s", qPrintable(argument));
             }},
            {QStringLiteral("activate"), [&] { m_application.activate(); }},
            {QStringLiteral("dialogue"),
             [&] {
                 m_dialogue.show();
                 say("dialogue %u", static_cast<unsigned>(m_dialogue.winId()));
             }},
            {QStringLiteral("front"),
             [&] {
                 m_application.setFrontWindow(*m_field->windowHandle());
                 m_application.activate();
             }},
            {QStringLiteral("watch"), [&] { watch(); }},
            {QStringLiteral("unwatch"),
             [&] {
                 m_monitors.removeMonitor(m_global);
                 m_monitors.removeMonitor(m_local);
                 say("unwatched");
             }},
            {QStringLiteral("gate"),
             [&] {
                 if (argument == u"close")
                     m_closing.emplace(m_gate);
                 else
                     m_closing.reset();
                 say("gate");
             }},
            {QStringLiteral("busy-quit"),
             [&] {
                 beBusyUntil(argument);
                 m_application.terminate();
             }},
            {QStringLiteral("quit"), [&] { m_application.terminate(); }},
        };
        if (const auto command = commands.find(words.first()); command != commands.end())
            command->second();
        else
            say("unknown %s", qPrintable(line));
    }

private:
    static void beBusyUntil(const QString& file) {
        say("busy");
        while (!QFile::exists(file))
            QThread::msleep(2);
    }

    long long count() { return m_pasteboard.changeCount(); }

    void read() {
        QElapsedTimer timer;
        timer.start();
        const QImage image = m_pasteboard.readImage();
        if (image.isNull())
            say("image none in %lld ms", static_cast<long long>(timer.elapsed()));
        else
            say("image %d x %d at %g", image.width(), image.height(), image.devicePixelRatio());
    }

    void write(int width, int height) {
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(QColor(200, 40, 90));
        QByteArray png;
        QBuffer buffer(&png);
        image.save(&buffer, "PNG");
        const long long before = count();
        m_pasteboard.writePng(png);
        say("wrote %lld %lld", before, count());
    }

    void openWindow(const QString& title) {
        m_field = std::make_unique<QLineEdit>();
        m_field->setWindowTitle(title);
        m_field->resize(300, 120);
        m_field->show();
        say("window %u", static_cast<unsigned>(m_field->winId()));
    }

    void watch() {
        m_global = m_monitors.addGlobalMonitor([](const KeyEvent& key) {
            say("global %u %llx", unsigned{key.keyCode}, static_cast<unsigned long long>(key.modifierFlags));
        });
        m_local = m_monitors.addLocalMonitor([](const KeyEvent& key) {
            say("local %u %llx", unsigned{key.keyCode}, static_cast<unsigned long long>(key.modifierFlags));
            return key.keyCode == keyX;
        });
        say("watching %s %s", m_global ? "global" : "none",
            m_permissions.isAccessibilityTrusted() ? "trusted" : "untrusted");
    }

    NotificationCenter m_notifications;
    NotificationCenter::Token m_active;
    CommandGate m_gate;
    std::optional<CommandGate::Closing> m_closing;
    X11Connection m_connection;
    X11KeyMonitors m_monitors{m_connection, m_gate};
    X11Permissions m_permissions{m_monitors};
    X11Pasteboard m_pasteboard{m_connection, [](const QByteArray& file) { return loadPicture(file).image; }};
    X11Application m_application{m_connection, m_notifications};
    KeyMonitors::Token m_global = 0;
    KeyMonitors::Token m_local = 0;
    std::unique_ptr<QLineEdit> m_field;
    QWidget m_dialogue;
};

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    ShellHost host;
    if (argc != 2)
        return 1;
    // For writing as well, so that the pipe does not end when a writer goes.
    const int pipe = open(argv[1], O_RDWR | O_CLOEXEC);
    if (pipe < 0)
        return 1;
    QSocketNotifier input(pipe, QSocketNotifier::Read);
    QByteArray pending;
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        char buffer[4096];
        const ssize_t length = read(pipe, buffer, sizeof buffer);
        if (length <= 0)
            return QCoreApplication::exit(1);
        pending.append(buffer, length);
        for (qsizetype end; (end = pending.indexOf('\n')) >= 0;) {
            const QString line = QString::fromUtf8(pending.left(end));
            pending.remove(0, end + 1);
            host.obey(line);
        }
    });
    say("ready");
    return QApplication::exec();
}
