#pragma once

#include "platform/Sharing.h"

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

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
    void hand(const QDBusMessage& call, const QVariantMap& options, Finished finished);
    void fail(Finished finished);

    QDBusConnection m_bus;
    QObject m_context; ///< Ends what is under way.
};

} // namespace framora
