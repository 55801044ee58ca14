#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <memory>
#include <vector>

namespace framora {

/// A notification server on a bus of the test's own, which writes down what it is asked.
class NotificationServerDouble final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    struct Notification {
        QString application;
        uint replaces = 0;
        QString icon;
        QString summary;
        QString body;
        QStringList actions;
        QVariantMap hints;
        int timeout = 0;
        uint id = 0;
    };

    NotificationServerDouble(const QString& busAddress, bool takesActions);
    ~NotificationServerDouble() override;

    /// What is to be seen now.
    std::vector<uint> shown;
    std::vector<Notification> all; ///< In the order of the calls.
    std::vector<uint> closed;

    void choose(uint id, const QString& action, const QString& token = {});
    void dismiss(uint id);

public Q_SLOTS:
    QStringList GetCapabilities();
    uint Notify(const QString& application, uint replaces, const QString& icon, const QString& summary,
                const QString& body, const QStringList& actions, const QVariantMap& hints, int timeout);
    void CloseNotification(uint id);

Q_SIGNALS:
    void NotificationClosed(uint id, uint reason);
    void ActionInvoked(uint id, const QString& action);
    void ActivationToken(uint id, const QString& token);

private:
    QString m_name;
    QDBusConnection m_bus;
    bool m_takesActions;
    uint m_lastId = 0;
};

} // namespace framora
