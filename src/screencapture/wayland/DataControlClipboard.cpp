#include "screencapture/wayland/DataControlClipboard.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#include <wayland-client-protocol.h>
#include <wayland-protocols/ext-data-control-v1.h>
#include <wayland-protocols/wlr-data-control-unstable-v1.h>

namespace framora {

namespace {

constexpr const char* kPng = "image/png";

// The two protocols are one on the wire, apart from the names of their interfaces.
static_assert(EXT_DATA_CONTROL_MANAGER_V1_CREATE_DATA_SOURCE ==
              ZWLR_DATA_CONTROL_MANAGER_V1_CREATE_DATA_SOURCE);
static_assert(EXT_DATA_CONTROL_MANAGER_V1_GET_DATA_DEVICE == ZWLR_DATA_CONTROL_MANAGER_V1_GET_DATA_DEVICE);
static_assert(EXT_DATA_CONTROL_DEVICE_V1_SET_SELECTION == ZWLR_DATA_CONTROL_DEVICE_V1_SET_SELECTION);
static_assert(EXT_DATA_CONTROL_SOURCE_V1_OFFER == ZWLR_DATA_CONTROL_SOURCE_V1_OFFER);
static_assert(EXT_DATA_CONTROL_OFFER_V1_DESTROY == ZWLR_DATA_CONTROL_OFFER_V1_DESTROY);

struct Interfaces {
    const wl_interface& manager;
    const wl_interface& device;
    const wl_interface& source;
};

constexpr Interfaces kKinds[] = {
    {ext_data_control_manager_v1_interface, ext_data_control_device_v1_interface,
     ext_data_control_source_v1_interface},
    {zwlr_data_control_manager_v1_interface, zwlr_data_control_device_v1_interface,
     zwlr_data_control_source_v1_interface},
};

/// The kind that the compositor offers; null when none.
const Interfaces* kindOf(const WaylandConnection& connection) {
    const auto kind = std::find_if(std::begin(kKinds), std::end(kKinds), [&](const Interfaces& interfaces) {
        return connection.offers(interfaces.manager);
    });
    return kind == std::end(kKinds) ? nullptr : kind;
}

void listen(wl_proxy* proxy, const void* listener, void* data) {
    // The library takes a listener as a row of functions of any type, and only reads it.
    wl_proxy_add_listener(proxy, reinterpret_cast<void (**)(void)>(const_cast<void*>(listener)), data);
}

} // namespace

struct DataControlClipboard::Listeners {
    // Other programs' clipboards are of no interest here, and nor is the one set apart for the middle button.
    static void offered(void*, zwlr_data_control_device_v1*, zwlr_data_control_offer_v1* offer) {
        zwlr_data_control_offer_v1_destroy(offer);
    }
    static void selection(void*, zwlr_data_control_device_v1*, zwlr_data_control_offer_v1*) {}
    static void finished(void* data, zwlr_data_control_device_v1*) {
        static_cast<DataControlClipboard*>(data)->m_owner = false;
    }
    static void send(void* data, zwlr_data_control_source_v1*, const char* type, int32_t file) {
        if (std::strcmp(type, kPng) == 0)
            static_cast<DataControlClipboard*>(data)->begin(file);
        else
            close(file);
    }
    static void cancelled(void* data, zwlr_data_control_source_v1*) {
        static_cast<DataControlClipboard*>(data)->m_owner = false;
    }

    static constexpr zwlr_data_control_device_v1_listener device{
        .data_offer = offered, .selection = selection, .finished = finished, .primary_selection = selection};
    static constexpr zwlr_data_control_source_v1_listener source{.send = send, .cancelled = cancelled};
};

DataControlClipboard::DataControlClipboard(std::vector<uint8_t> png, std::chrono::milliseconds patience)
    : m_png(std::move(png)), m_patience(patience) {}

DataControlClipboard::~DataControlClipboard() {
    for (const Transfer& transfer : m_transfers)
        close(transfer.file);
    for (wl_proxy* proxy : {m_source, m_device, m_manager, reinterpret_cast<wl_proxy*>(m_seat)})
        if (proxy)
            wl_proxy_destroy(proxy); // with the connection, everything is given back
}

bool DataControlClipboard::offeredBy(const WaylandConnection& connection) {
    return connection.valid() && connection.offers(wl_seat_interface) && kindOf(connection);
}

bool DataControlClipboard::own() {
    if (!offeredBy(m_connection))
        return false;
    // A reader that goes away in the middle is no reason to end.
    signal(SIGPIPE, SIG_IGN);
    const Interfaces& kind = *kindOf(m_connection);
    m_seat = m_connection.bind<wl_seat>(wl_seat_interface, 1);
    m_manager = m_connection.bind<wl_proxy>(kind.manager, 1);
    m_device = wl_proxy_marshal_flags(m_manager, ZWLR_DATA_CONTROL_MANAGER_V1_GET_DATA_DEVICE, &kind.device,
                                      wl_proxy_get_version(m_manager), 0, nullptr, m_seat);
    listen(m_device, &Listeners::device, this);
    m_source = wl_proxy_marshal_flags(m_manager, ZWLR_DATA_CONTROL_MANAGER_V1_CREATE_DATA_SOURCE,
                                      &kind.source, wl_proxy_get_version(m_manager), 0, nullptr);
    listen(m_source, &Listeners::source, this);
    wl_proxy_marshal_flags(m_source, ZWLR_DATA_CONTROL_SOURCE_V1_OFFER, nullptr,
                           wl_proxy_get_version(m_source), 0, kPng);
    wl_proxy_marshal_flags(m_device, ZWLR_DATA_CONTROL_DEVICE_V1_SET_SELECTION, nullptr,
                           wl_proxy_get_version(m_device), 0, m_source);
    m_owner = true;
    return m_connection.roundtrip() && m_owner;
}

void DataControlClipboard::begin(int file) {
    fcntl(file, F_SETFL, fcntl(file, F_GETFL) | O_NONBLOCK);
    fcntl(file, F_SETFD, FD_CLOEXEC);
    m_transfers.push_back({file, 0, Clock::now() + m_patience});
}

bool DataControlClipboard::sendMore(Transfer& transfer) {
    while (transfer.sent < m_png.size()) {
        const ssize_t count =
            write(transfer.file, m_png.data() + transfer.sent, m_png.size() - transfer.sent);
        if (count < 0)
            return (errno == EAGAIN || errno == EINTR) && Clock::now() < transfer.deadline;
        transfer.sent += static_cast<std::size_t>(count);
        transfer.deadline = Clock::now() + m_patience;
    }
    return false;
}

void DataControlClipboard::run() {
    while (m_connection.valid() && (m_owner || !m_transfers.empty())) {
        if (m_transfers.empty()) {
            if (!m_connection.dispatch(-1))
                break;
            continue;
        }
        serveReaders(true);
        if (!m_connection.dispatch(0))
            break;
    }
    // The compositor is gone; who already reads may finish.
    while (!m_transfers.empty())
        serveReaders(false);
}

void DataControlClipboard::serveReaders(bool withCompositor) {
    std::erase_if(m_transfers, [this](Transfer& transfer) {
        if (sendMore(transfer))
            return false;
        close(transfer.file);
        return true;
    });
    if (m_transfers.empty())
        return;
    std::vector<pollfd> waiting;
    auto soonest = Clock::time_point::max();
    for (const Transfer& transfer : m_transfers) {
        waiting.push_back({transfer.file, POLLOUT, 0});
        soonest = std::min(soonest, transfer.deadline);
    }
    if (withCompositor)
        waiting.push_back({wl_display_get_fd(m_connection), POLLIN, 0});
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(soonest - Clock::now()).count();
    poll(waiting.data(), waiting.size(), static_cast<int>(std::max<long>(0, left)));
}

} // namespace framora
