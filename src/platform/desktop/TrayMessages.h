#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusVariant>
#include <QIcon>
#include <QList>
#include <QString>
#include <QVariantMap>

namespace framora {

// What the tray's D-Bus interfaces send, by their signatures.

/// (iiay): width, height, and ARGB bytes in network order.
struct TrayPixmap {
    int width = 0;
    int height = 0;
    QByteArray argb;
};
/// a(iiay): every size of the icon.
using TrayPixmaps = QList<TrayPixmap>;
TrayPixmaps trayPixmaps(const QIcon& icon);

/// (sa(iiay)ss)
struct TrayToolTip {
    QString iconName;
    TrayPixmaps icon;
    QString title;
    QString text;
};

/// (ia{sv}av): a menu entry and what is below it.
struct TrayMenuNode {
    int id = 0;
    QVariantMap properties;
    QList<TrayMenuNode> children;
};

/// (ia{sv})
struct TrayMenuProperties {
    int id = 0;
    QVariantMap properties;
};
using TrayMenuPropertyList = QList<TrayMenuProperties>;

/// (isvu): what a host reports of an entry.
struct TrayMenuEvent {
    int id = 0;
    QString type;
    QDBusVariant data;
    uint time = 0;
};

/// aas: each shortcut as its keys' names.
using TrayMenuShortcut = QList<QStringList>;

/// Makes all of them known to D-Bus; calling it again does nothing.
void registerTrayMessages();

QDBusArgument& operator<<(QDBusArgument& argument, const TrayPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, TrayPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const TrayToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, TrayToolTip& toolTip);
QDBusArgument& operator<<(QDBusArgument& argument, const TrayMenuNode& node);
const QDBusArgument& operator>>(const QDBusArgument& argument, TrayMenuNode& node);
QDBusArgument& operator<<(QDBusArgument& argument, const TrayMenuProperties& entry);
const QDBusArgument& operator>>(const QDBusArgument& argument, TrayMenuProperties& entry);
QDBusArgument& operator<<(QDBusArgument& argument, const TrayMenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& argument, TrayMenuEvent& event);

} // namespace framora

Q_DECLARE_METATYPE(framora::TrayPixmap)
Q_DECLARE_METATYPE(framora::TrayToolTip)
Q_DECLARE_METATYPE(framora::TrayMenuNode)
Q_DECLARE_METATYPE(framora::TrayMenuProperties)
Q_DECLARE_METATYPE(framora::TrayMenuEvent)
