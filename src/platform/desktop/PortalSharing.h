#pragma once

#include "platform/Sharing.h"

#include <QDBusConnection>
#include <QObject>
#include <QVariant>

class QDBusMessage;

namespace framora {

/// Shares through the desktop portal. Files cross over as open descriptors.
class PortalSharing final : public Sharing {
public:
    explicit PortalSharing(QDBusConnection bus = QDBusConnection::sessionBus());

    void queryAbilities(std::function<void(Abilities)> answer) override;
    void openWith(const QString& path, const QWindow* parent, Finished finished) override;
    void composeMail(const QString& path, const QString& subject, const QWindow* parent,
                     Finished finished) override;

private:
    /// Sends the call and gives `done` whether it was answered without an error, and the answer.
    void send(const QDBusMessage& call, std::function<void(bool, const QDBusMessage&)> done);
    /// `descriptor` is -1 when the file could not be opened: nothing is sent then.
    void hand(const QDBusMessage& call, int descriptor, Finished finished);

    QDBusConnection m_bus;
    QObject m_context; ///< Ends what is under way.
};

} // namespace framora
