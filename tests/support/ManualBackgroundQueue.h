#pragma once

#include "platform/BackgroundQueue.h"

#include <algorithm>
#include <deque>
#include <utility>

namespace framora {

/// Background work that waits until the test runs it, on the test's own thread.
class ManualBackgroundQueue final : public BackgroundQueue {
public:
    explicit ManualBackgroundQueue(MainQueue& mainQueue) : m_mainQueue(mainQueue) {}

    void async(Work work) override {
        ++startedCount;
        m_works.push_back(std::move(work));
    }

    /// Runs what waits; its results wait on the main queue then.
    void runPending() {
        for (Work& work : std::exchange(m_works, {}))
            m_mainQueue.async(work());
    }
    /// The same, when what was asked for last is ready first.
    void runPendingBackwards() {
        std::reverse(m_works.begin(), m_works.end());
        runPending();
    }

    int startedCount = 0;

private:
    MainQueue& m_mainQueue;
    std::deque<Work> m_works;
};

} // namespace framora
