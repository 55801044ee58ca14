#include "platform/desktop/QtMainQueue.h"

#include <QTimer>

namespace framora {

namespace {

class TimerItem final : public WorkItem {
public:
    TimerItem(CommandGate& gate, double seconds, bool repeats, MainQueue::Work work)
        : m_work(std::make_shared<MainQueue::Work>(std::move(work))) {
        m_timer.setSingleShot(!repeats);
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, [this, &gate] {
            // Held weakly: an item that is cancelled while its work waits at the gate takes the work with it.
            gate.whenOpen([weak = std::weak_ptr(m_work)] {
                if (const auto strong = weak.lock())
                    (*strong)();
            });
        });
        m_timer.start(static_cast<int>(seconds * 1000.0 + 0.5));
    }
    void cancel() override {
        m_timer.stop();
        m_work.reset();
    }

private:
    std::shared_ptr<MainQueue::Work> m_work;
    QTimer m_timer;
};

} // namespace

void QtMainQueue::async(Work work) {
    QMetaObject::invokeMethod(
        &m_context, [this, run = std::move(work)] { m_gate.whenOpen(run); }, Qt::QueuedConnection);
}

std::unique_ptr<WorkItem> QtMainQueue::after(double seconds, Work work) {
    return std::make_unique<TimerItem>(m_gate, seconds, false, std::move(work));
}

std::unique_ptr<WorkItem> QtMainQueue::every(double seconds, Work work) {
    return std::make_unique<TimerItem>(m_gate, seconds, true, std::move(work));
}

} // namespace framora
