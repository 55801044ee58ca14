#pragma once

#include "platform/BackgroundQueue.h"

#include <QObject>
#include <memory>
#include <thread>
#include <vector>

namespace framora {

/// Each piece of work on a thread of low priority.
///
/// Going, it hardly waits for the work under way, whose result is dropped: on a busy machine such a thread
/// may get no processor for seconds, not even to end. Work that must be finished has no place here.
class ThreadBackgroundQueue final : public BackgroundQueue {
public:
    explicit ThreadBackgroundQueue(MainQueue& mainQueue);
    ~ThreadBackgroundQueue() override;

    void async(Work work) override;

    /// Whether a queue has gone without its work. The program must end without destroying what is static
    /// then, since a thread may still use it.
    static bool hasLeftWork();

private:
    struct Shared;

    MainQueue& m_mainQueue;
    std::unique_ptr<QObject> m_context; ///< Results that are on their way are dropped with it.
    std::shared_ptr<Shared> m_shared;
    std::vector<std::thread> m_threads;
};

} // namespace framora
