#include "platform/desktop/ThreadBackgroundQueue.h"

#include "platform/ThreadPriority.h"

#include <algorithm>
#include <utility>

namespace framora {

ThreadBackgroundQueue::ThreadBackgroundQueue(MainQueue& mainQueue)
    : m_mainQueue(mainQueue), m_context(std::make_unique<QObject>()) {}

ThreadBackgroundQueue::~ThreadBackgroundQueue() {
    for (std::thread& thread : m_threads)
        thread.join();
}

void ThreadBackgroundQueue::async(Work work) {
    m_threads.emplace_back([this, work = std::move(work)]() mutable {
        lowerThreadPriority();
        MainQueue::Work done = work();
        work = {};
        const auto finish = [this, done = std::move(done), thread = std::this_thread::get_id()] {
            const auto ended = std::find_if(m_threads.begin(), m_threads.end(),
                                            [thread](const auto& each) { return each.get_id() == thread; });
            ended->join();
            m_threads.erase(ended);
            // In its place behind what the main queue has to do already.
            m_mainQueue.async(done);
        };
        QMetaObject::invokeMethod(m_context.get(), finish, Qt::QueuedConnection);
    });
}

} // namespace framora
