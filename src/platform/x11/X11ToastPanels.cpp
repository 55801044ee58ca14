#include "platform/x11/X11ToastPanels.h"

#include "platform/x11/X11ToastConnection.h"
#include "platform/x11/X11ToastPanel.h"

#include <utility>

namespace framora {
namespace {

/// A toast that nobody can see.
class UnseenPanel final : public ToastPanel {
public:
    explicit UnseenPanel(MainQueue& queue) : m_queue(queue) {}
    void setAlpha(double) override {}
    void orderFront() override {}
    void animateAlpha(double, double seconds, Easing, std::function<void()> done) override {
        m_end = done ? m_queue.after(seconds, std::move(done)) : nullptr;
    }

private:
    MainQueue& m_queue;
    std::unique_ptr<WorkItem> m_end;
};

} // namespace

X11ToastPanels::X11ToastPanels(MainQueue& queue) : m_queue(queue) {}

X11ToastPanels::~X11ToastPanels() = default;

void X11ToastPanels::withdraw() {
    if (m_connection && m_connection->isValid())
        m_connection->setWithdrawn(true);
}

void X11ToastPanels::restore() {
    if (m_connection && m_connection->isValid())
        m_connection->setWithdrawn(false);
}

std::unique_ptr<ToastPanel> X11ToastPanels::makePanel(const Screen& screen, bool ignoresMouse,
                                                      std::unique_ptr<ToastContent> content) {
    if (!m_connection)
        m_connection = std::make_unique<X11ToastConnection>();
    if (!m_connection->isValid())
        return std::make_unique<UnseenPanel>(m_queue);
    return std::make_unique<X11ToastPanel>(*m_connection, m_queue, screen, ignoresMouse, std::move(content));
}

} // namespace framora
