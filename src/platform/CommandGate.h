#pragma once

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace framora {

/// Whether the user's commands are taken now. While the capture tool has the screen they are not: whoever
/// brings a command in asks first and drops it when the gate is closed; work that only waits its turn asks to
/// be told of the opening.
class CommandGate {
public:
    bool isOpen() const { return m_closed == 0; }
    /// How often it has been closed so far. A command that has to wait a turn compares: what the gate was
    /// closed for meanwhile came first, and drops it even when that is over already.
    std::uint64_t closings() const { return m_closings; }

    /// Closes the gate for its lifetime.
    class Closing {
    public:
        explicit Closing(CommandGate& gate) : m_gate(gate) {
            ++m_gate.m_closed;
            ++m_gate.m_closings;
        }
        ~Closing() { m_gate.reopen(); }
        Closing(const Closing&) = delete;
        Closing& operator=(const Closing&) = delete;

    private:
        CommandGate& m_gate;
    };

    /// Runs `work` now, or when the gate opens, in the order of the calls. It must not throw, and only queue
    /// what takes longer: whoever closed the gate is not done yet.
    void whenOpen(std::function<void()> work) {
        if (isOpen())
            work();
        else
            m_waiting.push_back(std::move(work));
    }

private:
    void reopen() {
        if (--m_closed > 0)
            return;
        for (const auto& work : std::exchange(m_waiting, {}))
            work();
    }

    int m_closed = 0;
    std::uint64_t m_closings = 0;
    std::vector<std::function<void()>> m_waiting;
};

} // namespace framora
