#include "platform/desktop/ThreadBackgroundQueue.h"

#include "platform/ThreadPriority.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

namespace framora {
namespace {

/// Enough for a thread that has been told to stop and gets a processor.
constexpr std::chrono::milliseconds patience{100};

std::atomic<bool> someWorkIsLeft = false;

} // namespace

/// Outlives the queue with the last thread.
struct ThreadBackgroundQueue::Shared {
    std::mutex mutex;
    std::condition_variable ended;
    QObject* context = nullptr; ///< Null once nobody hears of results.
    int running = 0;
};

ThreadBackgroundQueue::ThreadBackgroundQueue(MainQueue& mainQueue)
    : m_mainQueue(mainQueue), m_context(std::make_unique<QObject>()), m_shared(std::make_shared<Shared>()) {
    m_shared->context = m_context.get();
}

ThreadBackgroundQueue::~ThreadBackgroundQueue() {
    std::unique_lock lock(m_shared->mutex);
    m_shared->context = nullptr;
    const bool haveEnded =
        m_shared->ended.wait_for(lock, patience, [this] { return m_shared->running == 0; });
    lock.unlock();
    if (!haveEnded)
        someWorkIsLeft = true;
    for (std::thread& thread : m_threads)
        if (haveEnded)
            thread.join();
        else
            thread.detach();
}

bool ThreadBackgroundQueue::hasLeftWork() {
    return someWorkIsLeft;
}

void ThreadBackgroundQueue::async(Work work) {
    const std::lock_guard lock(m_shared->mutex);
    m_threads.emplace_back([this, shared = m_shared, work = std::move(work)]() mutable {
        lowerThreadPriority();
        MainQueue::Work done = work();
        work = {};
        auto finish = [this, done = std::move(done), thread = std::this_thread::get_id()] {
            const auto ended = std::find_if(m_threads.begin(), m_threads.end(),
                                            [thread](const auto& each) { return each.get_id() == thread; });
            ended->join();
            m_threads.erase(ended);
            // In its place behind what the main queue has to do already.
            m_mainQueue.async(done);
        };
        {
            // No longer than it must be: the main thread waits for it, and this one gets a processor last.
            const std::lock_guard ending(shared->mutex);
            if (shared->context)
                QMetaObject::invokeMethod(shared->context, std::move(finish), Qt::QueuedConnection);
            --shared->running;
        }
        shared->ended.notify_all();
    });
    ++m_shared->running;
}

} // namespace framora
