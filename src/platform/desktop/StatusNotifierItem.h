#pragma once

#include "platform/desktop/TrayMessages.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>
#include <functional>

class QMenu;

namespace framora {

class TrayMenuExport;

/// An item with the StatusNotifierWatcher that runs, from its making to its end. The tray's host draws it and
/// its menu.
class StatusNotifierItem final : public QObject {
    Q_OBJECT

public:
    struct Events {
        std::function<void()> activated; ///< Clicked, where the host leaves that to the item.
        /// What lets a window come to the front after the click that follows.
        std::function<void(const QString& token)> token;
    };
    StatusNotifierItem(QDBusConnection bus, QIcon icon, QString title, Events events);
    ~StatusNotifierItem() override;

    static QString watcherService() { return QStringLiteral("org.kde.StatusNotifierWatcher"); }
    static bool watcherRuns(const QDBusConnection& bus);
    /// Whether somebody shows what the watcher knows.
    static bool hostRuns(const QDBusConnection& bus);

    void setIcon(const QIcon& icon);
    /// The menu outlives the item or is replaced before.
    void setMenu(QMenu* menu);

private:
    class Interface;

    QDBusConnection m_bus;
    QString m_service;
    QObject m_menuObject;
    TrayMenuExport* m_menuExport; ///< A child of m_menuObject.
    Interface* m_interface;       ///< A child of this.
};

} // namespace framora
