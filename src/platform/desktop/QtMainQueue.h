#pragma once

#include "platform/CommandGate.h"
#include "platform/MainQueue.h"

#include <QObject>

namespace framora {

/// The main queue on Qt's event loop. While the gate is closed due work waits for its opening.
class QtMainQueue final : public MainQueue {
public:
    explicit QtMainQueue(CommandGate& gate) : m_gate(gate) {}

    void async(Work work) override;
    std::unique_ptr<WorkItem> after(double seconds, Work work) override;
    std::unique_ptr<WorkItem> every(double seconds, Work work) override;

private:
    CommandGate& m_gate;
    QObject m_context; ///< Work that is still queued when the queue goes is dropped with it.
};

} // namespace framora
