#pragma once

#include "platform/BackgroundQueue.h"

#include <QObject>
#include <memory>
#include <thread>
#include <vector>

namespace framora {

/// Each piece of work on a thread of low priority. Going, it waits for the work under way, whose result is
/// dropped.
class ThreadBackgroundQueue final : public BackgroundQueue {
public:
    explicit ThreadBackgroundQueue(MainQueue& mainQueue);
    ~ThreadBackgroundQueue() override;

    void async(Work work) override;

private:
    MainQueue& m_mainQueue;
    std::unique_ptr<QObject> m_context; ///< Results that are on their way are dropped with it.
    std::vector<std::thread> m_threads;
};

} // namespace framora
