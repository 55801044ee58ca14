#include "editor/render/MemoryBudget.h"

#include <algorithm>

namespace framora {

MemoryBudget::Share::Share(MemoryBudget& budget, qint64 bytes, const std::stop_token& stop)
    : m_budget(budget), m_bytes(std::min(bytes, budget.m_total)) {
    std::unique_lock lock(budget.m_mutex);
    if (budget.m_given.wait(lock, stop, [&] { return budget.m_free >= m_bytes; }))
        budget.m_free -= m_bytes;
    else
        m_bytes = 0;
}

MemoryBudget::Share::Share(MemoryBudget& budget, qint64 bytes)
    : m_budget(budget), m_bytes(std::min(bytes, budget.m_total)) {
    const std::lock_guard lock(budget.m_mutex);
    if (budget.m_free >= m_bytes)
        budget.m_free -= m_bytes;
    else
        m_bytes = 0;
}

MemoryBudget::Share::~Share() {
    {
        const std::lock_guard lock(m_budget.m_mutex);
        m_budget.m_free += m_bytes;
    }
    m_budget.m_given.notify_all();
}

} // namespace framora
