#include "platform/desktop/NotificationToastPanels.h"

#include "platform/ApplicationId.h"

#include <utility>

namespace framora {

class NotificationToastPanels::Panel final : public ToastPanel {
public:
    Panel(NotificationToastPanels& owner, bool ignoresMouse, std::unique_ptr<ToastContent> content)
        : m_owner(owner), m_ignoresMouse(ignoresMouse), m_content(std::move(content)) {}
    ~Panel() override { m_owner.end(*this, false); }

    void setAlpha(double) override {}
    void orderFront() override { m_owner.show(*this); }
    /// The server fades as it likes; here only the times are kept.
    void animateAlpha(double alpha, double seconds, Easing, std::function<void()> done) override {
        if (alpha <= 0)
            m_owner.end(*this, true);
        m_animation = done ? m_owner.m_queue.after(seconds, std::move(done)) : nullptr;
    }

    NotificationServer::Notification notification() const {
        const ToastSummary summary = m_content->summary();
        NotificationServer::Notification result;
        result.summary = summary.message;
        result.icon = summary.success ? QString::fromLatin1(applicationId) : QStringLiteral("dialog-error");
        result.picture = summary.picture;
        result.milliseconds = static_cast<int>(summary.seconds * 1000);
        if (!m_ignoresMouse) {
            result.body = summary.hint;
            result.action = summary.action;
        }
        return result;
    }
    void choose() {
        if (!m_ignoresMouse)
            m_content->press({});
    }

private:
    NotificationToastPanels& m_owner;
    bool m_ignoresMouse;
    std::unique_ptr<ToastContent> m_content;
    std::unique_ptr<WorkItem> m_animation;
};

NotificationToastPanels::NotificationToastPanels(MainQueue& queue,
                                                 std::function<void(const QString&)> tokenGiven,
                                                 QDBusConnection bus)
    : m_queue(queue), m_server(std::move(bus)), m_tokenGiven(std::move(tokenGiven)),
      m_self(std::make_shared<NotificationToastPanels*>(this)) {
    m_server.listen({[this](uint id) {
                         if (id == 0 || id != m_id)
                             return;
                         // The user has put it away, and a capture must not bring it back.
                         m_id = 0;
                         m_current = nullptr;
                     },
                     [this](uint id) {
                         if (id == m_id && id != 0 && m_current)
                             m_current->choose();
                     },
                     [this](uint id, const QString& token) {
                         if (id == m_id && id != 0)
                             m_tokenGiven(token);
                     },
                     [this] { m_id = 0; }});
}

NotificationToastPanels::~NotificationToastPanels() {
    close();
}

std::unique_ptr<ToastPanel> NotificationToastPanels::makePanel(const Screen&, bool ignoresMouse,
                                                               std::unique_ptr<ToastContent> content) {
    return std::make_unique<Panel>(*this, ignoresMouse, std::move(content));
}

void NotificationToastPanels::show(Panel& panel) {
    m_current = &panel;
    m_withdrawn = nullptr;
    auto notification = panel.notification();
    notification.replaces = m_id;
    m_server.notify(notification, [this, number = ++m_sent](uint id) {
        if (number != m_sent) {
            // One that was sent later knew nothing of this one, and stands beside it.
            if (id != 0 && id != m_id)
                m_server.close(id);
            return;
        }
        m_id = id;
        if (!m_current)
            close();
    });
}

void NotificationToastPanels::end(Panel& panel, bool atOnce) {
    if (m_withdrawn == &panel)
        m_withdrawn = nullptr;
    if (m_current != &panel)
        return;
    m_current = nullptr;
    if (atOnce) {
        close();
        return;
    }
    m_queue.async([weak = std::weak_ptr(m_self)] {
        if (const auto self = weak.lock(); self && !(*self)->m_current)
            (*self)->close();
    });
}

void NotificationToastPanels::close() {
    if (const uint id = std::exchange(m_id, 0); id != 0)
        m_server.close(id);
}

void NotificationToastPanels::withdraw() {
    if (!m_current)
        return;
    m_withdrawn = std::exchange(m_current, nullptr);
    close();
}

void NotificationToastPanels::restore() {
    if (m_withdrawn && !m_current)
        show(*m_withdrawn);
}

} // namespace framora
