#include "desktop/support/VirtualDesktop.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QUuid>

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <thread>
#include <unistd.h>

namespace framora {
namespace {

constexpr auto markerVariable = "FRAMORA_VIRTUAL_DESKTOP";

void writeFile(const QString& path, const QByteArray& contents) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
        throw std::runtime_error("cannot write " + path.toStdString());
}

/// One line from a descriptor, without its end; empty after the time limit.
QByteArray readLine(int descriptor, int timeoutMs) {
    QByteArray line;
    pollfd waiting = {descriptor, POLLIN, 0};
    while (::poll(&waiting, 1, timeoutMs) > 0) {
        char character = 0;
        if (::read(descriptor, &character, 1) != 1 || character == '\n')
            return line;
        line += character;
    }
    return {};
}

constexpr auto panelConfiguration = R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="28"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
        <value type="int" value="2"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
      <property name="style" type="uint" value="0"/>
    </property>
    <property name="plugin-2" type="string" value="systray"/>
  </property>
</channel>
)";

constexpr auto tint2Configuration = R"(panel_items = FS
panel_size = 100% 28
panel_position = top center horizontal
panel_background_id = 1
systray_padding = 4 4 4
systray_icon_size = 20
rounded = 0
border_width = 0
background_color = #2b2f36 100
)";

// A flat frame; the program's own default theme differs between versions.
constexpr auto frameTheme = R"(border.width: 1
border.color: #20262f
padding.width: 8
padding.height: 6
window.client.padding.width: 0
window.client.padding.height: 0
window.handle.width: 0
window.active.title.bg: Flat Solid
window.active.title.bg.color: #2b323d
window.inactive.title.bg: Flat Solid
window.inactive.title.bg.color: #39414d
window.*.label.bg: Parentrelative
window.active.label.text.color: #e6eaf0
window.inactive.label.text.color: #9aa3b0
window.label.text.justify: center
window.active.button.*.bg: Parentrelative
window.inactive.button.*.bg: Parentrelative
window.active.button.*.image.color: #c3cad4
window.inactive.button.*.image.color: #8a929e
menu.items.bg: Flat Solid
menu.items.bg.color: #2b323d
)";

constexpr auto frameConfiguration = R"(<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew></focus>
  <theme><name>flat</name><titleLayout>LIMC</titleLayout>
    <font place="ActiveWindow"><name>Inter</name><size>10</size><weight>bold</weight></font>
    <font place="InactiveWindow"><name>Inter</name><size>10</size><weight>bold</weight></font>
  </theme>
  <desktops><number>2</number><popupTime>0</popupTime></desktops>
  <keyboard>
    <keybind key="A-F4"><action name="Close"/></keybind>
  </keyboard>
  <mouse>
    <context name="Titlebar">
      <mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
      <mousebind button="Left" action="Drag"><action name="Move"/></mousebind>
    </context>
    <context name="Client">
      <mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
    </context>
    <context name="Close">
      <mousebind button="Left" action="Click"><action name="Close"/></mousebind>
    </context>
  </mouse>
</openbox_config>
)";

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

VirtualDesktop::VirtualDesktop(const DesktopOptions& options)
    : m_marker(QUuid::createUuid().toString(QUuid::WithoutBraces)) {
    if (!m_folder.isValid())
        throw std::runtime_error("no temporary folder for the virtual desktop");
    writeConfiguration();
    try {
        startServer(options);
        if (options.sessionBus)
            startBus();
        if (options.accessibility)
            startAccessibility();
        if (options.windowManager != WindowManager::none)
            startWindowManager(options.windowManager);
        if (options.compositor)
            startCompositor();
        if (options.trayHost != TrayHost::none)
            startTrayHost(options.trayHost);
    } catch (...) {
        endEverything();
        throw;
    }
}

VirtualDesktop::~VirtualDesktop() {
    endEverything();
}

void VirtualDesktop::writeConfiguration() {
    for (const char* name : {"home", "config", "runtime", "cache", "data", "scratch"})
        QDir().mkpath(m_folder.filePath(QLatin1String(name)));
    QFile::setPermissions(runtimePath(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);

    for (const char* name : {"PATH", "LD_LIBRARY_PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS",
                             "TSAN_OPTIONS", "QT_PLUGIN_PATH", "QML_IMPORT_PATH"})
        if (qEnvironmentVariableIsSet(name))
            m_environment.insert(QLatin1String(name), qEnvironmentVariable(name));
    m_environment.insert(QLatin1String(markerVariable), m_marker);
    m_environment.insert(QStringLiteral("LANG"), QStringLiteral("C.UTF-8"));
    m_environment.insert(QStringLiteral("HOME"), homePath());
    m_environment.insert(QStringLiteral("XDG_CONFIG_HOME"), configPath());
    m_environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtimePath());
    m_environment.insert(QStringLiteral("XDG_CACHE_HOME"), m_folder.filePath(QStringLiteral("cache")));
    m_environment.insert(QStringLiteral("XDG_DATA_HOME"), m_folder.filePath(QStringLiteral("data")));
    m_environment.insert(QStringLiteral("XDG_SESSION_TYPE"), QStringLiteral("x11"));
    // GTK programs otherwise look for an accessibility bus first.
    m_environment.insert(QStringLiteral("NO_AT_BRIDGE"), QStringLiteral("1"));

    writeFile(configPath() + QStringLiteral("/pulse/client.conf"), "autospawn = no\n");
    writeFile(configPath() + QStringLiteral("/picom.conf"),
              "backend = \"xrender\";\nshadow = false;\nfading = false;\nvsync = false;\n");
    writeFile(configPath() + QStringLiteral("/tint2rc"), tint2Configuration);
    writeFile(configPath() + QStringLiteral("/openbox/rc.xml"), frameConfiguration);
    writeFile(m_folder.filePath(QStringLiteral("data/themes/flat/openbox-3/themerc")), frameTheme);
    writeFile(configPath() + QStringLiteral("/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml"),
              panelConfiguration);
}

void VirtualDesktop::startServer(const DesktopOptions& options) {
    int channel[2];
    if (::pipe2(channel, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe for the X server");
    QStringList arguments = {QStringLiteral("-displayfd"),
                             QString::number(channel[1]),
                             QStringLiteral("-screen"),
                             QStringLiteral("0"),
                             QStringLiteral("%1x%2x24").arg(options.size.width()).arg(options.size.height()),
                             QStringLiteral("-dpi"),
                             QStringLiteral("96"),
                             QStringLiteral("-nolisten"),
                             QStringLiteral("tcp"),
                             QStringLiteral("-noreset")};
    for (const char* name : {"COMPOSITE", "RANDR", "XTEST"})
        if (!options.disabledExtensions.contains(QLatin1String(name)))
            arguments << QStringLiteral("+extension") << QLatin1String(name);
    for (const QString& name : options.disabledExtensions)
        arguments << QStringLiteral("-extension") << name;
    try {
        m_children.push_back(
            std::make_unique<ChildProcess>(QStringLiteral("Xvfb"), arguments, m_environment, channel[1]));
    } catch (...) {
        ::close(channel[0]);
        ::close(channel[1]);
        throw;
    }
    ::close(channel[1]);
    const QByteArray number = readLine(channel[0], 10000);
    ::close(channel[0]);
    if (number.isEmpty())
        throw std::runtime_error("the X server did not start");
    m_displayName = QStringLiteral(":") + QString::fromLatin1(number);
    m_environment.insert(QStringLiteral("DISPLAY"), m_displayName);
    m_display = std::make_unique<DesktopDisplay>(m_displayName);
}

void VirtualDesktop::startBus() {
    const QString services = runtimePath() + QStringLiteral("/services");
    QDir().mkpath(services);
    // The settings daemon of the XFCE programs is all that may start by itself.
    const QString settingsService = QStringLiteral("/org.xfce.Xfconf.service");
    QFile::link(QStringLiteral("/usr/share/dbus-1/services") + settingsService, services + settingsService);
    const QString configuration = configPath() + QStringLiteral("/session-bus.conf");
    writeFile(configuration, QString::fromLatin1(busConfiguration).arg(runtimePath()).toUtf8());
    start(QStringLiteral("dbus-daemon"), {QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
                                          QStringLiteral("--config-file=") + configuration});
    const QString socket = runtimePath() + QStringLiteral("/bus");
    requireSoon("session bus", [&] { return QFile::exists(socket); });
    m_environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=") + socket);
}

void VirtualDesktop::startAccessibility() {
    start(QStringLiteral("/usr/libexec/at-spi-bus-launcher"), {QStringLiteral("--launch-immediately")});
    requireSoon("accessibility bus", [&] { return serviceIsOnBus(QStringLiteral("org.a11y.Bus")); });
    m_environment.insert(QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
}

bool VirtualDesktop::serviceIsOnBus(const QString& name) const {
    const QString connection = QUuid::createUuid().toString();
    bool registered = false;
    {
        const auto bus = QDBusConnection::connectToBus(busAddress(), connection);
        registered = bus.interface() && bus.interface()->isServiceRegistered(name);
    }
    QDBusConnection::disconnectFromBus(connection);
    return registered;
}

ChildProcess& VirtualDesktop::startWindowManager(WindowManager manager) {
    ChildProcess& child = manager == WindowManager::xfwm4
                              ? start(QStringLiteral("xfwm4"), {QStringLiteral("--compositor=off")})
                              : start(QStringLiteral("openbox"));
    requireSoon("window manager", [&] { return m_display->rootPropertyExists("_NET_SUPPORTING_WM_CHECK"); });
    return child;
}

ChildProcess& VirtualDesktop::startCompositor() {
    ChildProcess& child = start(QStringLiteral("picom"),
                                {QStringLiteral("--config"), configPath() + QStringLiteral("/picom.conf")});
    requireSoon("compositor", [&] { return m_display->selectionIsOwned("_NET_WM_CM_S0"); });
    return child;
}

ChildProcess& VirtualDesktop::startTrayHost(TrayHost host) {
    if (host == TrayHost::xfcePanel) {
        ChildProcess& child = start(QStringLiteral("xfce4-panel"), {QStringLiteral("--disable-wm-check"),
                                                                    QStringLiteral("--sm-client-disable")});
        requireSoon("status notifier watcher",
                    [&] { return serviceIsOnBus(QStringLiteral("org.kde.StatusNotifierWatcher")); });
        return child;
    }
    ChildProcess& child =
        host == TrayHost::tint2
            ? start(QStringLiteral("tint2"),
                    {QStringLiteral("-c"), configPath() + QStringLiteral("/tint2rc")})
            : start(QStringLiteral("trayer"),
                    {QStringLiteral("--edge"), QStringLiteral("top"), QStringLiteral("--align"),
                     QStringLiteral("right"), QStringLiteral("--widthtype"), QStringLiteral("request"),
                     QStringLiteral("--height"), QStringLiteral("28"), QStringLiteral("--expand"),
                     QStringLiteral("true")});
    requireSoon("system tray", [&] { return m_display->selectionIsOwned("_NET_SYSTEM_TRAY_S0"); });
    return child;
}

ChildProcess& VirtualDesktop::start(const QString& program, const QStringList& arguments) {
    m_children.push_back(std::make_unique<ChildProcess>(program, arguments, m_environment));
    return *m_children.back();
}

QByteArray VirtualDesktop::run(const QString& program, const QStringList& arguments, int timeoutMs,
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

QByteArray VirtualDesktop::clipboard(const QString& target) {
    return run(QStringLiteral("timeout"),
               {QStringLiteral("20"), QStringLiteral("xclip"), QStringLiteral("-selection"),
                QStringLiteral("clipboard"), QStringLiteral("-o"), QStringLiteral("-t"), target},
               22000);
}

QImage VirtualDesktop::clipboardImage() {
    return QImage::fromData(clipboard(), "PNG");
}

QStringList VirtualDesktop::clipboardTargets() {
    return QString::fromUtf8(clipboard(QStringLiteral("TARGETS")))
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

void VirtualDesktop::setClipboard(const QByteArray& bytes, const QString& target) {
    const QString path = scratchPath() + QStringLiteral("/clipboard-source");
    writeFile(path, bytes);
    start(QStringLiteral("xclip"), {QStringLiteral("-quiet"), QStringLiteral("-selection"),
                                    QStringLiteral("clipboard"), QStringLiteral("-t"), target, path});
    requireSoon("clipboard owner", [&] { return clipboard(target) == bytes; });
}

std::vector<qint64> VirtualDesktop::processes() const {
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

void VirtualDesktop::endEverything() {
    m_display.reset();
    // Last started, first ended: the server goes last, so that nobody complains about it.
    while (!m_children.empty())
        m_children.pop_back();
    // What outlived its parent, or a parent that was killed.
    for (const qint64 pid : processes())
        ::kill(pid_t(pid), SIGKILL);
}

bool VirtualDesktop::waitFor(const std::function<bool()>& condition, int timeoutMs) {
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

void VirtualDesktop::requireSoon(const char* what, const std::function<bool()>& condition) {
    if (!waitFor(condition, 15000))
        throw std::runtime_error(std::string("the virtual desktop's ") + what + " did not come up");
}

} // namespace framora
