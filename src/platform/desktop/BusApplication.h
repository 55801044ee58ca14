#pragma once

#include "platform/ProgramCommand.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDeadlineTimer>
#include <QObject>
#include <QVariantMap>
#include <chrono>
#include <functional>

namespace framora {

/// The program on the session bus, where desktops find it by its id: they start it there, and call the
/// actions of its desktop entry. Where there is no bus, nobody calls.
class BusApplication final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    /// The token is the one by which windows may come forward; empty when the desktop gave none.
    using Handler = std::function<void(ProgramCommand, const QString& activationToken)>;

    /// `startedByBus`: the bus started this process in order to activate it, which it then is. An activation
    /// that comes after `startPatience` is the user's: nobody waits longer for a start.
    BusApplication(QDBusConnection bus, bool startedByBus, Handler handler,
                   std::chrono::milliseconds startPatience = std::chrono::seconds(25));
    ~BusApplication() override;

public Q_SLOTS:
    void Activate(const QVariantMap& platform_data);
    /// There is nothing that the program opens: the same as Activate.
    void Open(const QStringList& uris, const QVariantMap& platform_data);
    void ActivateAction(const QString& action_name, const QVariantList& parameter,
                        const QVariantMap& platform_data);

private:
    QDBusConnection m_bus;
    QDeadlineTimer m_awaitsStart; ///< Within it a first activation is the start's own.
    Handler m_handler;
};

} // namespace framora
