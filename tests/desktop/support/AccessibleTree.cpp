#include "desktop/support/AccessibleTree.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QUuid>

#include <stdexcept>

namespace framora {
namespace {

const QString accessibleInterface = QStringLiteral("org.a11y.atspi.Accessible");
const QString rootPath = QStringLiteral("/org/a11y/atspi/accessible/root");
constexpr int callTimeoutMs = 3000;

// Bits of the first word of a node's state.
constexpr quint32 checkedBit = 1U << 4;
constexpr quint32 showingBit = 1U << 25;

QString accessibilityAddress(const QString& sessionAddress) {
    const QString name = QUuid::createUuid().toString();
    QString address;
    {
        const auto session = QDBusConnection::connectToBus(sessionAddress, name);
        const auto reply = session.call(
            QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                                           QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress")),
            QDBus::Block, callTimeoutMs);
        if (reply.type() == QDBusMessage::ReplyMessage)
            address = reply.arguments().value(0).toString();
    }
    QDBusConnection::disconnectFromBus(name);
    if (address.isEmpty())
        throw std::runtime_error("no accessibility bus on the desktop");
    return address;
}

} // namespace

AccessibleTree::AccessibleTree(const QString& address)
    : m_connectionName(QUuid::createUuid().toString()),
      m_bus(QDBusConnection::connectToBus(accessibilityAddress(address), m_connectionName)) {}

AccessibleTree::~AccessibleTree() {
    QDBusConnection::disconnectFromBus(m_connectionName);
}

QVariantList AccessibleTree::call(const QString& service, const QString& path, const QString& interface,
                                  const QString& method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    const auto reply = m_bus.call(message, QDBus::Block, callTimeoutMs);
    return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments() : QVariantList();
}

QVariant AccessibleTree::property(const QString& service, const QString& path, const QString& interface,
                                  const QString& name) {
    const auto reply = call(service, path, QStringLiteral("org.freedesktop.DBus.Properties"),
                            QStringLiteral("Get"), {interface, name});
    return reply.value(0).value<QDBusVariant>().variant();
}

std::vector<std::pair<QString, QString>> AccessibleTree::children(const QString& service,
                                                                  const QString& path) {
    std::vector<std::pair<QString, QString>> result;
    const auto reply = call(service, path, accessibleInterface, QStringLiteral("GetChildren"));
    if (reply.isEmpty())
        return result;
    const auto list = reply[0].value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        QString childService;
        QDBusObjectPath childPath;
        list.beginStructure();
        list >> childService >> childPath;
        list.endStructure();
        result.emplace_back(childService, childPath.path());
    }
    list.endArray();
    return result;
}

void AccessibleTree::collect(const QString& service, const QString& path, int depth,
                             std::vector<AccessibleNode>& result) {
    constexpr int deepest = 40;
    if (depth > deepest)
        return;
    AccessibleNode node;
    node.service = service;
    node.path = path;
    node.name = property(service, path, accessibleInterface, QStringLiteral("Name")).toString();
    node.role = call(service, path, accessibleInterface, QStringLiteral("GetRoleName")).value(0).toString();
    const auto state = call(service, path, accessibleInterface, QStringLiteral("GetState"));
    if (!state.isEmpty()) {
        QList<uint> words;
        state[0].value<QDBusArgument>() >> words;
        node.showing = !words.isEmpty() && (words[0] & showingBit);
        node.checked = !words.isEmpty() && (words[0] & checkedBit);
    }
    constexpr uint screenCoordinates = 0;
    const auto extents = call(service, path, QStringLiteral("org.a11y.atspi.Component"),
                              QStringLiteral("GetExtents"), {screenCoordinates});
    if (!extents.isEmpty()) {
        int x = 0, y = 0, width = 0, height = 0;
        const auto structure = extents[0].value<QDBusArgument>();
        structure.beginStructure();
        structure >> x >> y >> width >> height;
        structure.endStructure();
        node.area = QRect(x, y, width, height);
    }
    result.push_back(node);
    for (const auto& [childService, childPath] : children(service, path))
        collect(childService, childPath, depth + 1, result);
}

std::vector<AccessibleNode> AccessibleTree::nodes(const QString& application) {
    std::vector<AccessibleNode> result;
    for (const auto& [service, path] : children(QStringLiteral("org.a11y.atspi.Registry"), rootPath))
        if (property(service, path, accessibleInterface, QStringLiteral("Name"))
                .toString()
                .contains(application))
            collect(service, path, 0, result);
    return result;
}

std::optional<AccessibleNode> AccessibleTree::find(const QString& application, const QString& name,
                                                   const QString& role) {
    for (const AccessibleNode& node : nodes(application))
        if (node.showing && node.name == name && (role.isEmpty() || node.role == role) &&
            !node.area.isEmpty())
            return node;
    return {};
}

std::optional<double> AccessibleTree::value(const AccessibleNode& node) {
    const QVariant value = property(node.service, node.path, QStringLiteral("org.a11y.atspi.Value"),
                                    QStringLiteral("CurrentValue"));
    return value.isValid() ? std::optional(value.toDouble()) : std::nullopt;
}

} // namespace framora
