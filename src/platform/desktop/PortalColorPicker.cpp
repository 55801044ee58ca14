#include "platform/desktop/PortalColorPicker.h"

#include "platform/desktop/PortalRequest.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <algorithm>
#include <cmath>
#include <utility>

namespace framora {
namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString objectPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Screenshot");
/// Before this there were pictures only.
constexpr uint firstVersion = 2;

/// Three parts of 0...1.
std::optional<QColor> colorIn(const QVariantMap& results) {
    const auto argument = results.value(QStringLiteral("color")).value<QDBusArgument>();
    if (argument.currentSignature() != u"(ddd)")
        return std::nullopt;
    double red = 0;
    double green = 0;
    double blue = 0;
    argument.beginStructure();
    argument >> red >> green >> blue;
    argument.endStructure();
    if (!std::isfinite(red + green + blue))
        return std::nullopt;
    const auto part = [](double value) { return float(std::clamp(value, 0.0, 1.0)); };
    return QColor::fromRgbF(part(red), part(green), part(blue));
}

} // namespace

PortalColorPicker::PortalColorPicker(NamePortalWindow nameWindow, QDBusConnection bus)
    : m_nameWindow(std::move(nameWindow)), m_bus(std::move(bus)),
      m_watcher(service, m_bus, QDBusServiceWatcher::WatchForUnregistration) {
    connect(&m_watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
        // Nobody responds any more.
        if (m_request)
            m_request->end(PortalRequest::unanswered);
    });
}

PortalColorPicker::~PortalColorPicker() {
    cancel();
}

void PortalColorPicker::queryAvailable(std::function<void(bool)> answer) {
    QDBusMessage question = QDBusMessage::createMethodCall(
        service, objectPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question << interface << QStringLiteral("version");
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [answer = std::move(answer)](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                const QDBusMessage reply = finished->reply();
                answer(reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty() &&
                       reply.arguments().first().value<QDBusVariant>().variant().toUInt() >= firstVersion);
            });
}

void PortalColorPicker::pick(QWindow* parent, Picked picked, Failed failed) {
    dismiss();
    m_picked = std::move(picked);
    const PortalWindowName name = m_nameWindow(parent);
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, objectPath, interface, QStringLiteral("PickColor"));
    call << *name;
    m_request = new PortalRequest(
        m_bus, call, {},
        [this, name, failed = std::move(failed)](uint response, const QVariantMap& results) {
            m_request.clear();
            const Picked taken = std::exchange(m_picked, nullptr);
            const auto color = response == PortalRequest::done ? colorIn(results) : std::nullopt;
            // Desktops that have no word for the user's Escape say `failed`.
            if (color || response == PortalRequest::cancelled || response == PortalRequest::failed)
                taken(color);
            else
                failed();
        },
        this);
}

PortalColorPicker::Picked PortalColorPicker::takeBack() {
    if (m_request)
        m_request->close();
    m_request.clear();
    return std::exchange(m_picked, nullptr);
}

void PortalColorPicker::dismiss() {
    Picked picked = takeBack();
    if (!picked)
        return;
    QMetaObject::invokeMethod(
        this,
        [this, picked = std::move(picked), cancellations = m_cancellations] {
            if (m_cancellations == cancellations)
                picked(std::nullopt);
        },
        Qt::QueuedConnection);
}

void PortalColorPicker::cancel() {
    ++m_cancellations;
    takeBack();
}

} // namespace framora
