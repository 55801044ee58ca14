#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariantMap>
#include <functional>

namespace framora {

/// One call to the desktop's portal whose answer comes later, by a signal of an object of its own. Ends
/// itself with it.
class PortalRequest final : public QObject {
    Q_OBJECT

public:
    /// `failed` is the portal's word for every other end, by some of them also for the user's Escape;
    /// `unanswered` is never its own: the call was refused, or nobody is there to respond.
    enum Response : uint { done = 0, cancelled = 1, failed = 2, unanswered = 3 };
    using Responded = std::function<void(uint response, const QVariantMap& results)>;

    /// Makes the call with `options` as its last argument. One that is refused stays `unanswered`.
    PortalRequest(QDBusConnection bus, QDBusMessage call, QVariantMap options, Responded responded,
                  QObject* parent);

    /// For a portal that will not respond any more.
    void end(uint response, const QVariantMap& results = {});
    /// Has the portal take back what it shows; nobody hears of it any more. Deletes itself.
    void close();

private Q_SLOTS:
    void onResponse(uint response, const QVariantMap& results);

private:
    void subscribe(bool on);
    void onReply(const QDBusMessage& reply);

    QDBusConnection m_bus;
    QString m_path;
    bool m_isReplied = false;
    bool m_isClosing = false;
    Responded m_responded;
};

} // namespace framora
