#include "platform/desktop/TrayMessages.h"

#include <QDBusMetaType>
#include <QDBusVariant>
#include <QImage>
#include <QtEndian>

namespace framora {

TrayPixmaps trayPixmaps(const QIcon& icon) {
    TrayPixmaps all;
    for (const QSize size : icon.availableSizes()) {
        QImage image = icon.pixmap(size).toImage().convertToFormat(QImage::Format_ARGB32);
        TrayPixmap pixmap{image.width(), image.height(), {}};
        for (int y = 0; y < image.height(); ++y) {
            auto* line = reinterpret_cast<quint32*>(image.scanLine(y));
            qToBigEndian<quint32>(line, image.width(), line);
            pixmap.argb.append(reinterpret_cast<const char*>(line), qsizetype{image.width()} * 4);
        }
        all.append(pixmap);
    }
    return all;
}

void registerTrayMessages() {
    qDBusRegisterMetaType<TrayPixmap>();
    qDBusRegisterMetaType<TrayPixmaps>();
    qDBusRegisterMetaType<TrayToolTip>();
    qDBusRegisterMetaType<TrayMenuNode>();
    qDBusRegisterMetaType<TrayMenuProperties>();
    qDBusRegisterMetaType<TrayMenuPropertyList>();
    qDBusRegisterMetaType<TrayMenuShortcut>();
    qDBusRegisterMetaType<TrayMenuEvent>();
    qDBusRegisterMetaType<QList<TrayMenuEvent>>();
}

QDBusArgument& operator<<(QDBusArgument& argument, const TrayPixmap& pixmap) {
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.argb;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, TrayPixmap& pixmap) {
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.argb;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const TrayToolTip& toolTip) {
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.icon << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, TrayToolTip& toolTip) {
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.icon >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const TrayMenuNode& node) {
    argument.beginStructure();
    argument << node.id << node.properties;
    argument.beginArray(QMetaType::fromType<QDBusVariant>());
    for (const TrayMenuNode& child : node.children)
        argument << QDBusVariant(QVariant::fromValue(child));
    argument.endArray();
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, TrayMenuNode& node) {
    argument.beginStructure();
    argument >> node.id >> node.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        node.children.append(qdbus_cast<TrayMenuNode>(child.variant()));
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const TrayMenuProperties& entry) {
    argument.beginStructure();
    argument << entry.id << entry.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, TrayMenuProperties& entry) {
    argument.beginStructure();
    argument >> entry.id >> entry.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const TrayMenuEvent& event) {
    argument.beginStructure();
    argument << event.id << event.type << event.data << event.time;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, TrayMenuEvent& event) {
    argument.beginStructure();
    argument >> event.id >> event.type >> event.data >> event.time;
    argument.endStructure();
    return argument;
}

} // namespace framora
