#pragma once

#include <functional>
#include <memory>

namespace framora {

/// Work that waits on the main queue. Destroying it cancels it; cancelling twice, or after it ran, does
/// nothing.
class WorkItem {
public:
    virtual ~WorkItem() = default;
    virtual void cancel() = 0;
};

/// The main thread's queue and its timers. Every call is made on the main thread, and so is every callback.
class MainQueue {
public:
    using Work = std::function<void()>;

    virtual ~MainQueue() = default;

    /// Runs `work` in a later turn of the event loop, never inside this call, in the order of the calls.
    virtual void async(Work work) = 0;
    /// Runs `work` once after `seconds`, unless the item is cancelled or destroyed before.
    [[nodiscard]] virtual std::unique_ptr<WorkItem> after(double seconds, Work work) = 0;
    /// The same, whatever becomes of the caller: nothing cancels it but the queue's end.
    virtual void asyncAfter(double seconds, Work work) = 0;
    /// Runs `work` every `seconds` until the item is cancelled or destroyed.
    [[nodiscard]] virtual std::unique_ptr<WorkItem> every(double seconds, Work work) = 0;
};

} // namespace framora
