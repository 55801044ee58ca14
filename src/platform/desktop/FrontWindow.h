#pragma once

#include "platform/NotificationCenter.h"

#include <QObject>
#include <QPointer>
#include <QWindow>
#include <functional>

namespace framora {

/// Which of the program's windows is the front one, whatever shows them: the one that was shown or got the
/// focus last. Posts notifications::applicationDidBecomeActive.
class FrontWindow final : public QObject {
    Q_OBJECT

public:
    explicit FrontWindow(NotificationCenter& notifications);

    /// Null when there is none, or it is not visible.
    QWindow* visible() const { return m_window && m_window->isVisible() ? m_window.data() : nullptr; }
    void set(QWindow& window) { m_window = &window; }
    /// Called when a window that belongs in the task bar is about to be shown.
    void onShow(std::function<void(QWindow&)> handler) { m_onShow = std::move(handler); }

    static bool belongsInTaskBar(const QWindow& window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    NotificationCenter& m_notifications;
    QPointer<QWindow> m_window;
    std::function<void(QWindow&)> m_onShow;
};

} // namespace framora
