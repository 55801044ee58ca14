#include "desktop/support/VirtualDesktop.h"

#include <QDir>

#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <unistd.h>

namespace framora {
namespace {

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

} // namespace

VirtualDesktop::VirtualDesktop(const DesktopOptions& options) : DesktopSession(QStringLiteral("x11")) {
    writeConfiguration();
    startServer(options);
    if (options.sessionBus)
        // The settings daemon of the XFCE programs is all that may start by itself.
        startBus({QStringLiteral("org.xfce.Xfconf.service")});
    if (options.accessibility)
        startAccessibility();
    if (options.windowManager != WindowManager::none)
        startWindowManager(options.windowManager);
    if (options.compositor)
        startCompositor();
    if (options.trayHost != TrayHost::none)
        startTrayHost(options.trayHost);
}

VirtualDesktop::~VirtualDesktop() {
    m_display.reset();
}

void VirtualDesktop::writeConfiguration() {
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
    QStringList arguments = {
        QStringLiteral("-displayfd"),
        QString::number(channel[1]),
        QStringLiteral("-screen"),
        QStringLiteral("0"),
        QStringLiteral("%1x%2x%3").arg(options.size.width()).arg(options.size.height()).arg(options.depth),
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
        m_children.push_back(std::make_unique<ChildProcess>(QStringLiteral("Xvfb"), arguments, m_environment,
                                                            ChildProcess::Options{channel[1]}));
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

} // namespace framora
