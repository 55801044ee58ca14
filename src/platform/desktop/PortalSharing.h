#pragma once

#include "platform/Sharing.h"
#include "platform/desktop/PortalWindow.h"

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

class QDBusMessage;

namespace framora {

/// Shares through the desktop portal. Files cross over as open descriptors.
class PortalSharing final : public Sharing {
public:
    explicit PortalSharing(NamePortalWindow nameWindow, QDBusConnection bus = QDBusConnection::sessionBus());

    void queryAbilities(std::function<void(Abilities)> answer) override;
    void openWith(const QString& path, QWindow* parent, Finished finished) override;
    void composeMail(const QString& path, const QString& subject, QWindow* parent,
                     Finished finished) override;

private:
    /// `arguments` are those between the first, the parent window's name, and the last, the options.
    void hand(QDBusMessage call, QWindow* parent, const QVariantList& arguments, const QVariantMap& options,
              Finished finished);
    void fail(Finished finished);

    NamePortalWindow m_nameWindow;
    QDBusConnection m_bus;
    QObject m_context; ///< Ends what is under way.
};

} // namespace framora
