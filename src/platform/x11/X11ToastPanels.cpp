#include "platform/x11/X11ToastPanels.h"

#include "platform/x11/X11ToastConnection.h"
#include "platform/x11/X11ToastPanel.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
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

X11ToastPanels::X11ToastPanels(MainQueue& queue, Screens& screens) : m_queue(queue), m_screens(screens) {}

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
    // One that was refused by a full server is tried again.
    if (m_connection && !m_connection->isValid() && m_connection->panels().empty())
        m_connection.reset();
    if (!m_connection) {
        m_connection = std::make_unique<X11ToastConnection>();
        const auto followScreens = [this] { follow(); };
        QObject::connect(m_connection.get(), &X11ToastConnection::screensChanged, followScreens);
        // Qt knows the ratios, and it learns of them in its own time.
        const auto watch = [this, followScreens](const QScreen* each) {
            QObject::connect(each, &QScreen::logicalDotsPerInchChanged, m_connection.get(), followScreens);
        };
        for (const QScreen* each : QGuiApplication::screens())
            watch(each);
        QObject::connect(qGuiApp, &QGuiApplication::screenAdded, m_connection.get(),
                         [watch, followScreens](const QScreen* added) {
                             watch(added);
                             followScreens();
                         });
    }
    if (!m_connection->isValid())
        return std::make_unique<UnseenPanel>(m_queue);
    return std::make_unique<X11ToastPanel>(*m_connection, m_queue, screen, ignoresMouse, std::move(content));
}

void X11ToastPanels::follow() {
    if (m_connection->panels().empty())
        return;
    const auto screens = m_screens.screens();
    if (screens.empty())
        return;
    for (X11ToastPanel* panel : m_connection->panels()) {
        const auto same = std::ranges::find(screens, panel->screen().name, &Screen::name);
        panel->setScreen(same == screens.end() ? m_screens.screenInUse().value_or(screens.front()) : *same);
    }
}

} // namespace framora
