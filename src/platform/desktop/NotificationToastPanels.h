#pragma once

#include "platform/MainQueue.h"
#include "platform/ToastPanel.h"
#include "platform/desktop/NotificationServer.h"

#include <functional>
#include <memory>

namespace framora {

/// Toasts as the desktop's own notifications, where no program may put anything over the others: the same
/// message, picture and action, for the same time as far as the server keeps to it. One at a time; the next
/// one takes the place of the one that is there.
class NotificationToastPanels final : public ToastPanels {
public:
    /// The queue outlives this, and this its panels. `tokenGiven` is told of the token that comes with a
    /// click.
    NotificationToastPanels(MainQueue& queue, std::function<void(const QString&)> tokenGiven,
                            QDBusConnection bus = QDBusConnection::sessionBus());
    ~NotificationToastPanels() override;

    std::unique_ptr<ToastPanel> makePanel(const Screen& screen, bool ignoresMouse,
                                          std::unique_ptr<ToastContent> content) override;
    void withdraw() override;
    void restore() override;

private:
    class Panel;

    void show(Panel& panel);
    /// The panel fades, or has gone. `atOnce` is false when another one may be about to take its place.
    void end(Panel& panel, bool atOnce);
    void close();

    MainQueue& m_queue;
    NotificationServer m_server;
    std::function<void(const QString&)> m_tokenGiven;
    Panel* m_current = nullptr;   ///< What is to be seen.
    Panel* m_withdrawn = nullptr; ///< What was, before it was withdrawn.
    uint m_id = 0;                ///< What the server shows; 0 for nothing.
    unsigned m_sent = 0;          ///< How many were sent: tells the last one's answer.
    std::shared_ptr<NotificationToastPanels*> m_self;
};

} // namespace framora
