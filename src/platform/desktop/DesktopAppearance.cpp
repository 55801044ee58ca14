#include "platform/desktop/DesktopAppearance.h"

#include "platform/Notifications.h"
#include "platform/x11/X11ThemeName.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>
#include <algorithm>
#include <iterator>

namespace framora {
namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const QString gnomeGroup = QStringLiteral("org.gnome.desktop.interface");

/// Qt's palette where no desktop has set one: a blue that reads on light and dark.
const QColor ownAccent(0x2f, 0x6f, 0xe4);
/// The highlight of Qt's built-in style, which is nobody's choice.
const QColor builtInHighlight(0x30, 0x8c, 0xc6);

/// "Adwaita:dark" and "Arc-Dark" are dark.
bool namesDarkTheme(const QString& theme) {
    return theme.endsWith(QStringLiteral(":dark"), Qt::CaseInsensitive) ||
           theme.endsWith(QStringLiteral("-dark"), Qt::CaseInsensitive);
}

QVariant unwrapped(QVariant value) {
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

} // namespace

DesktopAppearance::DesktopAppearance(NotificationCenter& notifications, const QDBusConnection& bus)
    : m_notifications(notifications), m_announced(look()) {
    if (qGuiApp)
        qGuiApp->installEventFilter(this);
    askPortal(bus);
}

void DesktopAppearance::askPortal(QDBusConnection bus) {
    if (!bus.isConnected())
        return;
    // Qt finds the slot by the names of its types, and knows a name only from the type's registration on.
    qRegisterMetaType<QDBusVariant>();
    bus.connect(service, path, interface, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    auto message = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("ReadAll"));
    message << QStringList{appearanceGroup, gnomeGroup};
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(message), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusMessage reply = watcher->reply();
        if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
            return;
        const auto groups = qdbus_cast<QMap<QString, QVariantMap>>(reply.arguments().constFirst());
        for (auto group = groups.begin(); group != groups.end(); ++group)
            for (auto value = group->begin(); value != group->end(); ++value)
                take(group.key(), value.key(), value.value());
        announceChange();
    });
}

void DesktopAppearance::settingChanged(const QString& group, const QString& key, const QDBusVariant& value) {
    take(group, key, value.variant());
    announceChange();
}

void DesktopAppearance::take(const QString& group, const QString& key, const QVariant& wrapped) {
    const QVariant value = unwrapped(wrapped);
    if (group == appearanceGroup && key == QStringLiteral("color-scheme")) {
        const uint scheme = value.toUInt();
        m_portalDark = scheme == 1 ? std::optional(true) : scheme == 2 ? std::optional(false) : std::nullopt;
    } else if (group == appearanceGroup && key == QStringLiteral("reduced-motion")) {
        m_reducedMotion = value.toUInt() == 1;
    } else if (group == appearanceGroup && key == QStringLiteral("accent-color")) {
        double rgb[3] = {-1, -1, -1};
        if (value.canConvert<QDBusArgument>()) {
            const auto argument = value.value<QDBusArgument>();
            argument.beginStructure();
            for (double& component : rgb)
                argument >> component;
            argument.endStructure();
        }
        // Components outside 0 to 1 mean that there is none.
        const bool valid =
            std::all_of(std::begin(rgb), std::end(rgb), [](double c) { return c >= 0 && c <= 1; });
        m_portalAccent = valid ? std::optional(QColor::fromRgbF(float(rgb[0]), float(rgb[1]), float(rgb[2])))
                               : std::nullopt;
    } else if (group == gnomeGroup && key == QStringLiteral("gtk-theme")) {
        m_themeName = value.toString();
    } else if (group == gnomeGroup && key == QStringLiteral("enable-animations")) {
        m_animationsOff = !value.toBool();
    }
}

void DesktopAppearance::colorApplication() {
    m_colorsApplication = true;
    m_palette.apply(isDark(), accentColor());
}

bool DesktopAppearance::isDark() const {
    if (m_portalDark)
        return *m_portalDark;
    const QString theme = qEnvironmentVariable("GTK_THEME");
    if (!theme.isEmpty())
        return namesDarkTheme(theme);
    if (m_themeName && namesDarkTheme(*m_themeName))
        return true;
    if (!m_x11ThemeName)
        m_x11ThemeName = x11ThemeName();
    if (!m_x11ThemeName->isEmpty())
        return namesDarkTheme(*m_x11ThemeName);
    return m_palette.ofDesktop().color(QPalette::Window).lightness() < 128;
}

QColor DesktopAppearance::accentColor() const {
    if (m_portalAccent)
        return *m_portalAccent;
    const QColor highlight = m_palette.ofDesktop().color(QPalette::Active, QPalette::Highlight);
    return highlight == builtInHighlight || highlight.saturation() < 40 ? ownAccent : highlight;
}

bool DesktopAppearance::prefersReducedMotion() const {
    return m_reducedMotion || m_animationsOff;
}

bool DesktopAppearance::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange)
        announceChange();
    return false;
}

void DesktopAppearance::announceChange() {
    m_x11ThemeName.reset();
    if (m_colorsApplication)
        m_palette.apply(isDark(), accentColor());
    const Look now = look();
    if (now == m_announced)
        return;
    m_announced = now;
    m_notifications.post(notifications::appearanceChanged);
}

} // namespace framora
