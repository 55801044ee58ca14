#include "desktop/support/AccessibleTree.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QUuid>

#include <stdexcept>

namespace framora {
namespace {

const QString accessibleInterface = QStringLiteral("org.a11y.atspi.Accessible");
const QString valueInterface = QStringLiteral("org.a11y.atspi.Value");
const QString rootPath = QStringLiteral("/org/a11y/atspi/accessible/root");
constexpr int callTimeoutMs = 3000;

// Bits of the first word of a node's state.
constexpr quint32 checkedBit = 1U << 4;
constexpr quint32 enabledBit = 1U << 8;
constexpr quint32 focusableBit = 1U << 11;
constexpr quint32 focusedBit = 1U << 12;
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
        const auto has = [&](quint32 bit) { return !words.isEmpty() && (words[0] & bit); };
        node.showing = has(showingBit);
        node.checked = has(checkedBit);
        node.enabled = has(enabledBit);
        node.focusable = has(focusableBit);
        node.focused = has(focusedBit);
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
    const QVariant value = property(node.service, node.path, valueInterface, QStringLiteral("CurrentValue"));
    return value.isValid() ? std::optional(value.toDouble()) : std::nullopt;
}

void AccessibleTree::setValue(const AccessibleNode& node, double value) {
    call(node.service, node.path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Set"),
         {valueInterface, QStringLiteral("CurrentValue"), QVariant::fromValue(QDBusVariant(value))});
}

std::optional<std::pair<double, double>> AccessibleTree::range(const AccessibleNode& node) {
    const QVariant low = property(node.service, node.path, valueInterface, QStringLiteral("MinimumValue"));
    const QVariant high = property(node.service, node.path, valueInterface, QStringLiteral("MaximumValue"));
    if (!low.isValid() || !high.isValid())
        return {};
    return std::pair(low.toDouble(), high.toDouble());
}

bool AccessibleTree::press(const AccessibleNode& node) {
    const QString interface = QStringLiteral("org.a11y.atspi.Action");
    const auto reply = call(node.service, node.path, interface, QStringLiteral("GetActions"));
    if (reply.isEmpty())
        return false;
    const auto actions = reply[0].value<QDBusArgument>();
    int index = 0;
    std::optional<int> wanted;
    actions.beginArray();
    while (!actions.atEnd()) {
        QString name, description, keys;
        actions.beginStructure();
        actions >> name >> description >> keys;
        actions.endStructure();
        if (!wanted && (name == u"Press" || name == u"Toggle"))
            wanted = index;
        ++index;
    }
    actions.endArray();
    return wanted &&
           call(node.service, node.path, interface, QStringLiteral("DoAction"), {*wanted}).value(0).toBool();
}

} // namespace framora
