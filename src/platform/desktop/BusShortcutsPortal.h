#pragma once

#include "platform/desktop/PortalRequest.h"
#include "platform/desktop/ShortcutsPortal.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QVariantMap>

class QDBusMessage;

namespace framora {

/// The portal on the session bus, on a connection of its own: who a program is has to be said on it before
/// anything else, and the portal ends the session when it goes.
class BusShortcutsPortal final : public QObject, public ShortcutsPortal {
    Q_OBJECT

public:
    /// Listens on the bus of that address; empty for the session's.
    explicit BusShortcutsPortal(const QString& busAddress = {});
    ~BusShortcutsPortal() override;

    void listen(Listener listener) override;
    void begin(std::function<void(std::optional<unsigned>)> answer) override;
    void createSession(const std::vector<Wish>& wishes,
                       std::function<void(std::optional<QString>)> answer) override;
    void bind(const QString& session, const std::vector<Wish>& wishes,
              std::function<void(Outcome, std::vector<Binding>)> answer) override;
    void list(const QString& session, std::function<void(std::vector<Binding>)> answer) override;
    void close(const QString& session, std::function<void()> done) override;
    void configure(const QString& session) override;

private Q_SLOTS:
    void onActivated(const QDBusMessage& message);
    void onShortcutsChanged(const QDBusMessage& message);
    void onClosed(const QDBusMessage& message);

private:
    using Replied = std::function<void(const QDBusMessage&)>;
    void send(const QDBusMessage& call, Replied replied);
    void request(const QDBusMessage& call, const QVariantMap& options, PortalRequest::Responded responded);

    QString m_name;
    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    Listener m_listener;
};

} // namespace framora
