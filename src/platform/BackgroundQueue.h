#pragma once

#include "platform/MainQueue.h"

#include <functional>

namespace framora {

/// Work of low priority away from the main thread, whose result comes back to it.
class BackgroundQueue {
public:
    /// Runs on a thread of its own; what it returns runs on the main queue afterwards.
    using Work = std::function<MainQueue::Work()>;

    virtual ~BackgroundQueue() = default;
    /// Called on the main thread. `work` never runs inside this call.
    virtual void async(Work work) = 0;
};

} // namespace framora
