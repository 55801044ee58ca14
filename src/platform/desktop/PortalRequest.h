#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>
#include <functional>

namespace framora {

/// One answer that a portal gives later, by a signal of an object of its own. Ends itself with it.
class PortalRequest final : public QObject {
    Q_OBJECT

public:
    using Responded = std::function<void(uint response, const QVariantMap& results)>;

    PortalRequest(QDBusConnection bus, const QString& path, Responded responded, QObject* parent);

    /// Older portals choose another path than the one that was expected.
    void follow(const QString& path);
    void end(uint response, const QVariantMap& results);

private Q_SLOTS:
    void onResponse(uint response, const QVariantMap& results);

private:
    void subscribe(bool on);

    QDBusConnection m_bus;
    QString m_path;
    Responded m_responded;
};

} // namespace framora
