#include "platform/desktop/QtMainQueue.h"

#include <QPointer>
#include <QTimer>
#include <cmath>
#include <utility>

namespace framora {

namespace {

class TimerItem final : public WorkItem {
public:
    TimerItem(CommandGate& gate, double seconds, bool repeats, MainQueue::Work work)
        : m_gate(gate), m_work(std::make_shared<MainQueue::Work>(std::move(work))) {
        m_timer.setSingleShot(!repeats);
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { run(); });
        m_timer.start(static_cast<int>(std::lround(seconds * 1000.0)));
    }
    void cancel() override {
        m_timer.stop();
        m_work.reset();
    }

private:
    void run() {
        if (m_gate.isOpen()) {
            // Held here, as the work may destroy the item.
            if (const auto work = m_work)
                (*work)();
            return;
        }
        // However often a repeating timer comes due meanwhile, its work waits once.
        if (std::exchange(m_waiting, true))
            return;
        m_gate.whenOpen([this, timer = QPointer(&m_timer)] {
            if (!timer)
                return;
            QMetaObject::invokeMethod(
                timer,
                [this] {
                    m_waiting = false;
                    run();
                },
                Qt::QueuedConnection);
        });
    }

    CommandGate& m_gate;
    std::shared_ptr<MainQueue::Work> m_work;
    bool m_waiting = false;
    QTimer m_timer; ///< Context of what still runs for this item.
};

} // namespace

void QtMainQueue::async(Work work) {
    m_work.push_back(std::move(work));
    queueNext();
}

void QtMainQueue::queueNext() {
    QMetaObject::invokeMethod(
        &m_context, [this] { runNext(); }, Qt::QueuedConnection);
}

void QtMainQueue::runNext() {
    if (!m_gate.isOpen()) {
        m_gate.whenOpen([this, context = QPointer(&m_context)] {
            if (context)
                queueNext();
        });
        return;
    }
    const Work work = std::move(m_work.front());
    m_work.pop_front();
    work();
}

std::unique_ptr<WorkItem> QtMainQueue::after(double seconds, Work work) {
    return std::make_unique<TimerItem>(m_gate, seconds, false, std::move(work));
}

void QtMainQueue::asyncAfter(double seconds, Work work) {
    const auto item = m_uncancelled.emplace(m_uncancelled.end());
    *item = after(seconds, [this, item, work = std::move(work)] {
        work();
        m_uncancelled.erase(item);
    });
}

std::unique_ptr<WorkItem> QtMainQueue::every(double seconds, Work work) {
    return std::make_unique<TimerItem>(m_gate, seconds, true, std::move(work));
}

} // namespace framora
