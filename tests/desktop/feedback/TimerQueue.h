#pragma once

#include "platform/MainQueue.h"

#include <QTimer>

namespace framora {

/// The main queue on real timers of the test's own event loop.
class TimerQueue final : public MainQueue {
public:
    void async(Work work) override { QTimer::singleShot(0, std::move(work)); }
    std::unique_ptr<WorkItem> after(double seconds, Work work) override {
        return std::make_unique<Item>(seconds, true, std::move(work));
    }
    void asyncAfter(double seconds, Work work) override {
        QTimer::singleShot(int(seconds * 1000), std::move(work));
    }
    std::unique_ptr<WorkItem> every(double seconds, Work work) override {
        return std::make_unique<Item>(seconds, false, std::move(work));
    }

private:
    class Item final : public WorkItem {
    public:
        Item(double seconds, bool once, Work work) : m_work(std::make_shared<Work>(std::move(work))) {
            m_timer.setTimerType(Qt::PreciseTimer);
            m_timer.setSingleShot(once);
            // The work may destroy this item: the call that runs it holds it too.
            QObject::connect(&m_timer, &QTimer::timeout, [held = m_work] { (*held)(); });
            m_timer.start(int(seconds * 1000));
        }
        void cancel() override { m_timer.stop(); }

    private:
        std::shared_ptr<Work> m_work;
        QTimer m_timer;
    };
};

} // namespace framora
