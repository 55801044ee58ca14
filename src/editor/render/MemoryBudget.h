#pragma once

#include <QtGlobal>
#include <condition_variable>
#include <mutex>
#include <stop_token>

namespace framora {

/// A bound on the memory that several threads use at once for what they decode.
class MemoryBudget {
public:
    explicit MemoryBudget(qint64 bytes) : m_free(bytes), m_total(bytes) {}

    /// A part of the budget, given back with this object.
    class Share {
    public:
        /// Waits until that many bytes are free. What is more than the budget gets all of it, alone. Takes
        /// nothing once `stop` is asked for.
        Share(MemoryBudget& budget, qint64 bytes, const std::stop_token& stop);
        /// Takes nothing where they are not free now.
        Share(MemoryBudget& budget, qint64 bytes);
        ~Share();
        Share(const Share&) = delete;
        Share& operator=(const Share&) = delete;

        bool isTaken() const { return m_bytes > 0; }

    private:
        MemoryBudget& m_budget;
        qint64 m_bytes;
    };

private:
    std::mutex m_mutex;
    std::condition_variable_any m_given;
    qint64 m_free;
    const qint64 m_total;
};

} // namespace framora
