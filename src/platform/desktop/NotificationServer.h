#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QImage>
#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

namespace framora {

/// The desktop's notifications, as org.freedesktop.Notifications. Where there is no server nothing is shown,
/// and every answer says so.
class NotificationServer final : public QObject {
    Q_OBJECT

public:
    struct Notification {
        QString summary;
        QString body;   ///< Plain text.
        QString icon;   ///< A name of the icon theme.
        QImage picture; ///< Sent whole: keep it small.
        QString action; ///< What a click and its button do; empty for neither.
        int milliseconds = 0;
        uint replaces = 0; ///< An id whose place it takes; 0 for none.
    };
    struct Listener {
        std::function<void(uint id)> closed;
        std::function<void(uint id)> chosen; ///< The notification itself, or its button.
        /// By which a window may come forward; comes before `chosen`.
        std::function<void(uint id, const QString& token)> activationToken;
        std::function<void()> gone; ///< With all its notifications.
    };

    explicit NotificationServer(QDBusConnection bus);

    void listen(Listener listener) { m_listener = std::move(listener); }
    /// Gives the notification's id in a later turn; 0 when it is not shown.
    void notify(const Notification& notification, std::function<void(uint id)> shown);
    void close(uint id);

private Q_SLOTS:
    void onClosed(uint id, uint reason);
    void onAction(uint id, const QString& key);
    void onActivationToken(uint id, const QString& token);

private:
    void send(const Notification& notification, std::function<void(uint id)> shown);

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    Listener m_listener;
    std::optional<QStringList> m_abilities; ///< Known once the server was asked.
};

} // namespace framora
