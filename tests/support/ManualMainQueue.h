#pragma once

#include "platform/Clock.h"
#include "platform/MainQueue.h"

#include <algorithm>
#include <list>

namespace framora {

/// A main queue and a clock that stand still until the test moves them.
class ManualMainQueue final : public MainQueue, public Clock {
public:
    void async(Work work) override {
        m_entries.push_back(std::make_shared<Entry>(Entry{m_now, 0, std::move(work)}));
    }

    std::unique_ptr<WorkItem> after(double seconds, Work work) override {
        return schedule(seconds, 0, std::move(work));
    }

    void asyncAfter(double seconds, Work work) override {
        m_entries.push_back(std::make_shared<Entry>(Entry{m_now + seconds, 0, std::move(work)}));
    }

    std::unique_ptr<WorkItem> every(double seconds, Work work) override {
        return schedule(seconds, seconds, std::move(work));
    }

    double secondsSince1970() const override { return m_now; }
    void setTime(double secondsSince1970) { m_now = secondsSince1970; }

    /// Runs what is due now, and what that queues for now, in order of due time, then of queueing.
    void runPending() { advance(0); }

    void advance(double seconds) {
        const double end = m_now + seconds;
        while (auto next = takeNextDue(end)) {
            m_now = std::max(m_now, next->due);
            if (next->period > 0) {
                next->due += next->period;
                m_entries.push_back(next);
            }
            const Work work = next->work;
            work();
        }
        m_now = end;
    }

    /// Timers and asynchronous work that still wait.
    std::size_t waitingCount() const { return m_entries.size(); }

private:
    struct Entry {
        double due;
        double period;
        Work work;
    };
    class Item final : public WorkItem {
    public:
        Item(ManualMainQueue& queue, std::weak_ptr<Entry> entry)
            : m_queue(queue), m_entry(std::move(entry)) {}
        ~Item() override { Item::cancel(); }
        void cancel() override {
            if (const auto entry = m_entry.lock())
                m_queue.m_entries.remove(entry);
            m_entry.reset();
        }

    private:
        ManualMainQueue& m_queue;
        std::weak_ptr<Entry> m_entry;
    };

    std::unique_ptr<WorkItem> schedule(double seconds, double period, Work work) {
        m_entries.push_back(std::make_shared<Entry>(Entry{m_now + seconds, period, std::move(work)}));
        return std::make_unique<Item>(*this, m_entries.back());
    }

    std::shared_ptr<Entry> takeNextDue(double end) {
        const auto next = std::min_element(m_entries.begin(), m_entries.end(),
                                           [](const auto& a, const auto& b) { return a->due < b->due; });
        // Slack of a few units in the last place of such large times, so that 0.2 + 0.1 seconds are 0.3.
        if (next == m_entries.end() || (*next)->due > end + 1e-6)
            return nullptr;
        auto entry = *next;
        m_entries.erase(next);
        return entry;
    }

    std::list<std::shared_ptr<Entry>> m_entries;
    double m_now = 1'700'000'000.0;
};

} // namespace framora
