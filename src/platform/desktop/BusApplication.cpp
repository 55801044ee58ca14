#include "platform/desktop/BusApplication.h"

#include "platform/ApplicationId.h"

#include <QDBusConnectionInterface>
#include <QDBusError>
#include <utility>

namespace framora {
namespace {

/// The id as a path: dots become slashes.
const QString objectPath = QStringLiteral("/org/framora/Framora");

QString tokenIn(const QVariantMap& platformData) {
    const QString token = platformData.value(QStringLiteral("activation-token")).toString();
    return token.isEmpty() ? platformData.value(QStringLiteral("desktop-startup-id")).toString() : token;
}

} // namespace

BusApplication::BusApplication(QDBusConnection bus, bool startedByBus, Handler handler,
                               std::chrono::milliseconds startPatience)
    : m_bus(std::move(bus)), m_awaitsStart(startedByBus ? startPatience : std::chrono::milliseconds(0)),
      m_handler(std::move(handler)) {
    if (!m_bus.isConnected())
        return;
    // The object first: whoever waits for the name calls at once.
    m_bus.registerObject(objectPath, this, QDBusConnection::ExportAllSlots);
    // Where the same user runs the program on another display, that one is called until it ends.
    m_bus.interface()->registerService(QString::fromLatin1(applicationId),
                                       QDBusConnectionInterface::QueueService,
                                       QDBusConnectionInterface::DontAllowReplacement);
}

BusApplication::~BusApplication() {
    if (!m_bus.isConnected())
        return;
    m_bus.interface()->unregisterService(QString::fromLatin1(applicationId));
    m_bus.unregisterObject(objectPath);
}

void BusApplication::Activate(const QVariantMap& platform_data) {
    // The start that the bus was asked for has happened.
    if (!std::exchange(m_awaitsStart, QDeadlineTimer(0)).hasExpired())
        return;
    m_handler(ProgramCommand::activate, tokenIn(platform_data));
}

void BusApplication::Open(const QStringList&, const QVariantMap& platform_data) {
    Activate(platform_data);
}

void BusApplication::ActivateAction(const QString& action_name, const QVariantList&,
                                    const QVariantMap& platform_data) {
    m_awaitsStart = QDeadlineTimer(0);
    const auto command = commandOfName(action_name);
    if (!command || *command == ProgramCommand::activate) {
        if (calledFromDBus())
            sendErrorReply(QDBusError::InvalidArgs,
                           QStringLiteral("There is no action '%1'").arg(action_name));
        return;
    }
    m_handler(*command, tokenIn(platform_data));
}

} // namespace framora
