#pragma once

#include <systemd/sd-bus.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace framora {

struct BusMessageRelease {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using BusMessage = std::unique_ptr<sd_bus_message, BusMessageRelease>;

struct BusSlotRelease {
    void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};
using BusSlot = std::unique_ptr<sd_bus_slot, BusSlotRelease>;

/// Why a call did not come to a reply.
struct BusError {
    std::string name; ///< of the D-Bus error
    std::string text;

    bool is(const char* other) const { return name == other; }
    /// The service did not answer in the time it had.
    bool timedOut() const;
};

/// The reply, or why there is none.
struct BusReply {
    BusMessage message;
    BusError error;

    explicit operator bool() const { return message != nullptr; }
};

/// A connection to the user's session bus. While it lasts, the signals that ask this process to end are held
/// back and told by run() instead, so that what stands on the desktop can be taken back first.
class SessionBus {
public:
    /// A service that is there answers at once; one that hangs is not waited for.
    static constexpr std::chrono::milliseconds kReplyTime{1000};
    /// A service that the bus has to start first, at the beginning of a session among many others.
    static constexpr std::chrono::milliseconds kStartTime{5000};

    SessionBus();
    ~SessionBus();
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    bool valid() const { return m_bus != nullptr; }
    operator sd_bus*() const { return m_bus.get(); }
    std::string uniqueName() const;

    /// The unique name of who owns `service`, which the bus starts where it can; empty when there is none.
    std::string ownerOf(const char* service);

    /// An empty call to be filled; null only without memory.
    BusMessage newCall(const std::string& service, const char* path, const char* interface,
                       const char* member);
    /// Blocks up to `limit`.
    BusReply call(sd_bus_message* message, std::chrono::milliseconds limit = kReplyTime);

    /// Something else that is waited for meanwhile.
    struct Reader {
        int file = -1;
        std::function<bool()> read; ///< called when there is something; false when it wants no more
    };
    enum class Turn { Condition, TimedOut, Ended, BusGone };
    /// Handles what arrives until `condition` holds, which is asked before the first message and after each;
    /// until the limit, when one is given; or until this process is asked to end.
    Turn run(const std::function<bool()>& condition, std::chrono::milliseconds limit = {},
             std::vector<Reader> readers = {});

private:
    struct Close {
        void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
    };

    std::unique_ptr<sd_bus, Close> m_bus;
    sigset_t m_formerSignals;
    int m_signals = -1;
};

} // namespace framora
