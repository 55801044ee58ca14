#include "screencapture/portal/SessionBus.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>

namespace framora {

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kBusService = "org.freedesktop.DBus";
constexpr const char* kBusPath = "/org/freedesktop/DBus";

uint64_t microseconds(std::chrono::milliseconds time) {
    return static_cast<uint64_t>(std::chrono::microseconds(time).count());
}

/// How long to poll, in milliseconds; -1 for ever. The bus says in microseconds of the monotonic clock, which
/// is the steady one, when it wants a turn again.
int pollTime(sd_bus* bus, Clock::time_point end) {
    uint64_t busTime = UINT64_MAX;
    sd_bus_get_timeout(bus, &busTime);
    const auto now = Clock::now();
    auto left = end == Clock::time_point::max() ? std::chrono::hours(24) : end - now;
    if (busTime != UINT64_MAX)
        left = std::min<Clock::duration>(left, Clock::time_point(std::chrono::microseconds(busTime)) - now);
    const auto whole = std::chrono::ceil<std::chrono::milliseconds>(left).count();
    return static_cast<int>(std::max<decltype(whole)>(whole, 0));
}

} // namespace

bool BusError::timedOut() const {
    return is("org.freedesktop.DBus.Error.NoReply") || is("org.freedesktop.DBus.Error.Timeout") ||
           is("org.freedesktop.DBus.Error.TimedOut");
}

SessionBus::SessionBus() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&ending, signal);
    sigprocmask(SIG_BLOCK, &ending, &m_formerSignals);
    m_signals = signalfd(-1, &ending, SFD_CLOEXEC | SFD_NONBLOCK);
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) >= 0)
        m_bus.reset(bus);
}

SessionBus::~SessionBus() {
    m_bus.reset();
    if (m_signals >= 0)
        close(m_signals);
    sigprocmask(SIG_SETMASK, &m_formerSignals, nullptr);
}

std::string SessionBus::uniqueName() const {
    const char* name = nullptr;
    return sd_bus_get_unique_name(m_bus.get(), &name) >= 0 && name ? name : "";
}

std::string SessionBus::ownerOf(const char* service) {
    const auto owner = [&]() -> std::string {
        const BusMessage question = newCall(kBusService, kBusPath, kBusService, "GetNameOwner");
        sd_bus_message_append(question.get(), "s", service);
        const BusReply reply = call(question.get());
        const char* name = nullptr;
        return reply && sd_bus_message_read(reply.message.get(), "s", &name) > 0 ? name : "";
    };
    if (std::string name = owner(); !name.empty())
        return name;
    const BusMessage start = newCall(kBusService, kBusPath, kBusService, "StartServiceByName");
    sd_bus_message_append(start.get(), "su", service, 0U);
    return call(start.get(), kStartTime) ? owner() : std::string();
}

BusMessage SessionBus::newCall(const std::string& service, const char* path, const char* interface,
                               const char* member) {
    sd_bus_message* message = nullptr;
    sd_bus_message_new_method_call(m_bus.get(), &message, service.c_str(), path, interface, member);
    return BusMessage(message);
}

BusReply SessionBus::call(sd_bus_message* message, std::chrono::milliseconds limit) {
    sd_bus_error error = SD_BUS_ERROR_NULL;
    sd_bus_message* answer = nullptr;
    const int status = sd_bus_call(m_bus.get(), message, microseconds(limit), &error, &answer);
    BusReply reply{BusMessage(status >= 0 ? answer : nullptr), {}};
    if (status < 0) {
        if (!sd_bus_error_is_set(&error))
            sd_bus_error_set_errno(&error, status);
        reply.error = {error.name ? error.name : "", error.message ? error.message : ""};
    }
    sd_bus_error_free(&error);
    return reply;
}

SessionBus::Turn SessionBus::run(const std::function<bool()>& condition, std::chrono::milliseconds limit,
                                 std::vector<Reader> readers) {
    const auto end = limit.count() > 0 ? Clock::now() + limit : Clock::time_point::max();
    while (!condition()) {
        const int handled = sd_bus_process(m_bus.get(), nullptr);
        if (handled < 0)
            return Turn::BusGone;
        if (handled > 0)
            continue;
        if (Clock::now() >= end)
            return Turn::TimedOut;
        const int events = sd_bus_get_events(m_bus.get());
        if (events < 0)
            return Turn::BusGone;
        std::vector<pollfd> waiting = {{sd_bus_get_fd(m_bus.get()), static_cast<short>(events), 0},
                                       {m_signals, POLLIN, 0}};
        for (const Reader& reader : readers)
            waiting.push_back({reader.file, POLLIN, 0}); // A negative one is passed over.
        if (poll(waiting.data(), waiting.size(), pollTime(m_bus.get(), end)) < 0 && errno != EINTR)
            return Turn::BusGone;
        // Taken, so that it does not end the process when it is let through again.
        signalfd_siginfo signal;
        if (waiting[1].revents & POLLIN && read(m_signals, &signal, sizeof signal) > 0)
            return Turn::Ended;
        for (std::size_t i = 0; i < readers.size(); ++i)
            if (waiting[i + 2].revents && !readers[i].read())
                readers[i].file = -1;
    }
    return Turn::Condition;
}

} // namespace framora
