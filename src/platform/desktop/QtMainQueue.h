#pragma once

#include "platform/CommandGate.h"
#include "platform/MainQueue.h"

#include <QObject>
#include <deque>
#include <list>

namespace framora {

/// The main queue on Qt's event loop. While the gate is closed due work waits; it runs in a turn after
/// the opening, when whoever closed the gate has finished.
class QtMainQueue final : public MainQueue {
public:
    explicit QtMainQueue(CommandGate& gate) : m_gate(gate) {}

    void async(Work work) override;
    std::unique_ptr<WorkItem> after(double seconds, Work work) override;
    void asyncAfter(double seconds, Work work) override;
    std::unique_ptr<WorkItem> every(double seconds, Work work) override;

private:
    void queueNext();
    void runNext();

    CommandGate& m_gate;
    std::deque<Work> m_work; ///< What async() was given, in its order; each has a turn queued.
    std::list<std::unique_ptr<WorkItem>> m_uncancelled; ///< What asyncAfter() waits with.
    QObject m_context; ///< Work that is still queued when the queue goes is dropped with it.
};

} // namespace framora
