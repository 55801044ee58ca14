#include "desktop/support/DesktopSession.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QUuid>

#include <csignal>
#include <set>
#include <stdexcept>
#include <thread>
#include <unistd.h>

namespace framora {
namespace {

constexpr auto markerVariable = "FRAMORA_TEST_DESKTOP";
constexpr auto defaultsFile = "/framora/defaults.json";

constexpr auto busConfiguration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path=%1/bus</listen>
  <servicedir>%1/services</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

} // namespace

DesktopSession::DesktopSession(const QString& type)
    // A compositor that is run as another user must be able to reach its own folder in here.
    : m_folder(::geteuid() == 0 ? QStringLiteral("/tmp/framora-desktop-XXXXXX")
                                : QDir::tempPath() + QStringLiteral("/framora-desktop-XXXXXX")),
      m_marker(QUuid::createUuid().toString(QUuid::WithoutBraces)) {
    if (!m_folder.isValid())
        throw std::runtime_error("no temporary folder for the test desktop");
    for (const char* name : {"home", "config", "runtime", "cache", "data", "scratch", "temporary"})
        QDir().mkpath(m_folder.filePath(QLatin1String(name)));
    QFile::setPermissions(runtimePath(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);

    for (const char* name : {"PATH", "LD_LIBRARY_PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS",
                             "TSAN_OPTIONS", "QT_PLUGIN_PATH", "QML_IMPORT_PATH"})
        if (qEnvironmentVariableIsSet(name))
            m_environment.insert(QLatin1String(name), qEnvironmentVariable(name));
    m_environment.insert(QLatin1String(markerVariable), m_marker);
    m_environment.insert(QStringLiteral("LANG"), QStringLiteral("C.UTF-8"));
    m_environment.insert(QStringLiteral("HOME"), homePath());
    m_environment.insert(QStringLiteral("TMPDIR"), temporaryPath());
    m_environment.insert(QStringLiteral("XDG_CONFIG_HOME"), configPath());
    m_environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtimePath());
    m_environment.insert(QStringLiteral("XDG_CACHE_HOME"), m_folder.filePath(QStringLiteral("cache")));
    m_environment.insert(QStringLiteral("XDG_DATA_HOME"), m_folder.filePath(QStringLiteral("data")));
    m_environment.insert(QStringLiteral("XDG_SESSION_TYPE"), type);
    // GTK programs otherwise look for an accessibility bus first.
    m_environment.insert(QStringLiteral("NO_AT_BRIDGE"), QStringLiteral("1"));
}

DesktopSession::~DesktopSession() {
    endEverything();
}

void DesktopSession::writeFile(const QString& path, const QByteArray& contents) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
        throw std::runtime_error("cannot write " + path.toStdString());
}

QByteArray DesktopSession::storedDefaults() const {
    QFile file(configPath() + QLatin1String(defaultsFile));
    return file.open(QIODevice::ReadOnly) ? file.readAll().simplified() : QByteArray();
}

void DesktopSession::storeDefaults(const QByteArray& contents) const {
    writeFile(configPath() + QLatin1String(defaultsFile), contents);
}

void DesktopSession::storeUnchangedSettings() const {
    storeDefaults(R"({"Settings":{"hotkey":{"keyCode":21,"modifierFlagsRaw":655360},)"
                  R"("tabCaptureHotkey":{"keyCode":17,"modifierFlagsRaw":655360},"showDockIcon":true,)"
                  R"("copyToClipboard":true,"soundEffectsEnabled":true,"soundEffectsVolume":0.5,)"
                  R"("captureSound":"Frog"}})");
}

void DesktopSession::startBus(const QStringList& services) {
    const QString folder = runtimePath() + QStringLiteral("/services");
    QDir().mkpath(folder);
    for (const QString& service : services)
        QFile::link(QStringLiteral("/usr/share/dbus-1/services/") + service,
                    folder + QLatin1Char('/') + service);
    const QString configuration = configPath() + QStringLiteral("/session-bus.conf");
    writeFile(configuration, QString::fromLatin1(busConfiguration).arg(runtimePath()).toUtf8());
    start(QStringLiteral("dbus-daemon"), {QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
                                          QStringLiteral("--config-file=") + configuration});
    const QString socket = runtimePath() + QStringLiteral("/bus");
    m_environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=") + socket);
    // Its socket is there a moment before it listens.
    requireSoon("session bus", [&] {
        return QFile::exists(socket) && serviceIsOnBus(QStringLiteral("org.freedesktop.DBus"));
    });
}

void DesktopSession::startAccessibility() {
    start(QStringLiteral("/usr/libexec/at-spi-bus-launcher"), {QStringLiteral("--launch-immediately")});
    requireSoon("accessibility bus", [&] { return serviceIsOnBus(QStringLiteral("org.a11y.Bus")); });
    m_environment.insert(QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
}

bool DesktopSession::serviceIsOnBus(const QString& name) const {
    const QString connection = QUuid::createUuid().toString();
    bool registered = false;
    {
        const auto bus = QDBusConnection::connectToBus(busAddress(), connection);
        registered = bus.interface() && bus.interface()->isServiceRegistered(name);
    }
    QDBusConnection::disconnectFromBus(connection);
    return registered;
}

ChildProcess& DesktopSession::start(const QString& program, const QStringList& arguments,
                                    const ChildProcess::Options& options) {
    m_children.push_back(std::make_unique<ChildProcess>(program, arguments, m_environment, options));
    return *m_children.back();
}

QByteArray DesktopSession::run(const QString& program, const QStringList& arguments, int timeoutMs,
                               const QByteArray& input) {
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    QByteArray output;
    // Our own events are served meanwhile: the program may be asking this very process for its clipboard.
    const bool ended = waitFor(
        [&] { return process.waitForFinished(0) || process.state() == QProcess::NotRunning; }, timeoutMs);
    if (!ended) {
        process.kill();
        process.waitForFinished(1000);
        return {};
    }
    return process.readAllStandardOutput();
}

std::vector<qint64> DesktopSession::processes() const {
    std::vector<qint64> result;
    const QByteArray wanted = QByteArray(markerVariable) + '=' + m_marker.toUtf8();
    const auto entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& entry : entries) {
        QFile file(QStringLiteral("/proc/%1/environ").arg(entry));
        if (entry[0].isDigit() && file.open(QIODevice::ReadOnly) && file.readAll().contains(wanted))
            result.push_back(entry.toLongLong());
    }
    return result;
}

void DesktopSession::endEverything() {
    // Last started, first ended: the server goes last, so that nobody complains about it.
    while (!m_children.empty())
        m_children.pop_back();
    // What outlived its parent, or a parent that was killed.
    for (const qint64 pid : processes())
        ::kill(pid_t(pid), SIGKILL);
}

bool DesktopSession::waitFor(const std::function<bool()>& condition, int timeoutMs) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > timeoutMs)
            return false;
        QCoreApplication::processEvents();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

QImage DesktopSession::settled(const std::function<QImage()>& takePicture, int times) {
    QImage last = takePicture();
    int same = 1;
    waitFor([&] {
        const QImage now = takePicture();
        same = now == last ? same + 1 : 1;
        last = now;
        return same >= times;
    });
    return last;
}

void DesktopSession::requireSoon(const char* what, const std::function<bool()>& condition) {
    if (!waitFor(condition, 15000))
        throw std::runtime_error(std::string("the test desktop's ") + what + " did not come up");
}

namespace {

/// Whether the bus daemon started it because somebody called for its name.
bool isService(qint64 pid) {
    QFile file(QStringLiteral("/proc/%1/environ").arg(pid));
    return file.open(QIODevice::ReadOnly) && file.readAll().contains("DBUS_STARTER_ADDRESS=");
}

qint64 parentOf(qint64 pid) {
    QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    // The program's name stands in parentheses and may hold anything.
    const QByteArray line = file.readAll();
    const auto fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    return fields.size() < 2 ? 0 : fields[1].toLongLong();
}

QStringList filesBelow(const QString& folder) {
    QStringList files;
    QDirIterator entries(folder, QDir::Files | QDir::System | QDir::Hidden, QDirIterator::Subdirectories);
    while (entries.hasNext())
        files << entries.next();
    return files;
}

} // namespace

QStringList DesktopSession::leftovers(int timeoutMs) {
    QStringList left;
    const auto look = [&] {
        left.clear();
        std::set<qint64> started;
        for (const auto& child : m_children)
            if (child->isRunning())
                started.insert(child->pid());
        for (const qint64 pid : processes()) {
            const QString name = ChildProcess::nameOf(pid);
            // A compositor starts its X server apart from itself.
            if (name.isEmpty() || started.contains(pid) || isService(pid) ||
                name == QStringLiteral("Xwayland"))
                continue;
            qint64 ancestor = pid;
            while (ancestor > 1 && !started.contains(ancestor))
                ancestor = parentOf(ancestor);
            if (ancestor <= 1 || name.startsWith(QStringLiteral("framora")))
                left << QStringLiteral("process %1 %2").arg(pid).arg(name);
        }
        left << filesBelow(homePath() + QStringLiteral("/Pictures")) << filesBelow(temporaryPath());
        return left.isEmpty();
    };
    waitFor(look, timeoutMs);
    return left;
}

} // namespace framora
