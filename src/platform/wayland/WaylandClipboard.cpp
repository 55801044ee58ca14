#include "platform/wayland/WaylandClipboard.h"

#include <algorithm>
#include <utility>
#include <wayland-protocols/ext-data-control-v1.h>
#include <wayland-protocols/wlr-data-control-unstable-v1.h>

namespace framora {

namespace {

// The two protocols say the same in other names.

struct ExtDataControl {
    using Manager = ext_data_control_manager_v1;
    using Device = ext_data_control_device_v1;
    using DeviceListener = ext_data_control_device_v1_listener;
    using Offer = ext_data_control_offer_v1;
    using OfferListener = ext_data_control_offer_v1_listener;

    static constexpr std::uint32_t version = 1;
    static const wl_interface& interface() { return ext_data_control_manager_v1_interface; }
    static Device* device(Manager* manager, wl_seat* seat) {
        return ext_data_control_manager_v1_get_data_device(manager, seat);
    }
    static void listen(Device* device, const DeviceListener& listener, void* data) {
        ext_data_control_device_v1_add_listener(device, &listener, data);
    }
    static void listen(Offer* offer, const OfferListener& listener, void* data) {
        ext_data_control_offer_v1_add_listener(offer, &listener, data);
    }
    static void receive(Offer* offer, const char* type, int descriptor) {
        ext_data_control_offer_v1_receive(offer, type, descriptor);
    }
    static void destroy(Manager* manager) { ext_data_control_manager_v1_destroy(manager); }
    static void destroy(Device* device) { ext_data_control_device_v1_destroy(device); }
    static void destroy(Offer* offer) { ext_data_control_offer_v1_destroy(offer); }
};

struct WlrDataControl {
    using Manager = zwlr_data_control_manager_v1;
    using Device = zwlr_data_control_device_v1;
    using DeviceListener = zwlr_data_control_device_v1_listener;
    using Offer = zwlr_data_control_offer_v1;
    using OfferListener = zwlr_data_control_offer_v1_listener;

    static constexpr std::uint32_t version = 2;
    static const wl_interface& interface() { return zwlr_data_control_manager_v1_interface; }
    static Device* device(Manager* manager, wl_seat* seat) {
        return zwlr_data_control_manager_v1_get_data_device(manager, seat);
    }
    static void listen(Device* device, const DeviceListener& listener, void* data) {
        zwlr_data_control_device_v1_add_listener(device, &listener, data);
    }
    static void listen(Offer* offer, const OfferListener& listener, void* data) {
        zwlr_data_control_offer_v1_add_listener(offer, &listener, data);
    }
    static void receive(Offer* offer, const char* type, int descriptor) {
        zwlr_data_control_offer_v1_receive(offer, type, descriptor);
    }
    static void destroy(Manager* manager) { zwlr_data_control_manager_v1_destroy(manager); }
    static void destroy(Device* device) { zwlr_data_control_device_v1_destroy(device); }
    static void destroy(Offer* offer) { zwlr_data_control_offer_v1_destroy(offer); }
};

template <class Protocol> class DataControlClipboard final : public WaylandClipboard {
public:
    explicit DataControlClipboard(WaylandConnection& connection)
        : m_connection(connection),
          m_manager(connection.bind<Manager>(Protocol::interface(), Protocol::version)) {
        connection.onGlobalAdded([this](const auto&) { watchSeat(); });
        watchSeat();
    }

    ~DataControlClipboard() override {
        leaveSeat();
        Protocol::destroy(m_manager);
    }

    std::vector<std::string> types() const override {
        const auto found = std::ranges::find(m_offers, m_current, &KnownOffer::proxy);
        return found == m_offers.end() ? std::vector<std::string>() : found->types;
    }

    void receive(const std::string& type, int descriptor) override {
        if (m_current)
            Protocol::receive(m_current, type.c_str(), descriptor);
    }

private:
    using Manager = typename Protocol::Manager;
    using Device = typename Protocol::Device;
    using Offer = typename Protocol::Offer;
    struct KnownOffer {
        Offer* proxy;
        std::vector<std::string> types;
    };

    void watchSeat() {
        if (m_device)
            return;
        const auto seat = std::ranges::find_if(m_connection.globals(), [&](const auto& global) {
            return global.interface == wl_seat_interface.name && global.name != m_finishedSeat;
        });
        if (seat == m_connection.globals().end())
            return;
        m_seatName = seat->name;
        m_seat = m_connection.bind<wl_seat>(*seat, wl_seat_interface, 1);
        m_device = Protocol::device(m_manager, m_seat);
        Protocol::listen(m_device, deviceListener, this);
    }

    void leaveSeat() {
        for (const auto& offer : std::exchange(m_offers, {}))
            Protocol::destroy(offer.proxy);
        m_current = nullptr;
        if (Device* const device = std::exchange(m_device, nullptr))
            Protocol::destroy(device);
        if (wl_seat* const seat = std::exchange(m_seat, nullptr))
            wl_seat_destroy(seat);
    }

    void forget(Offer* offer) {
        if (offer && std::erase_if(m_offers, [&](const auto& known) { return known.proxy == offer; }) > 0)
            Protocol::destroy(offer);
    }

    static DataControlClipboard& self(void* data) { return *static_cast<DataControlClipboard*>(data); }

    static constexpr typename Protocol::OfferListener offerListener{
        .offer =
            [](void* data, Offer* offer, const char* type) {
                auto& offers = self(data).m_offers;
                const auto found = std::ranges::find(offers, offer, &KnownOffer::proxy);
                if (found != offers.end())
                    found->types.emplace_back(type);
            },
    };
    static constexpr typename Protocol::DeviceListener deviceListener{
        .data_offer =
            [](void* data, Device*, Offer* offer) {
                self(data).m_offers.push_back({offer, {}});
                Protocol::listen(offer, offerListener, data);
            },
        .selection =
            [](void* data, Device*, Offer* offer) {
                self(data).forget(std::exchange(self(data).m_current, offer));
                // An owner that only gives the clipboard up brings nothing new.
                if (offer)
                    ++self(data).m_changes;
            },
        .finished =
            [](void* data, Device*) {
                // The seat goes, and the connection may not know it yet; another may take its place.
                self(data).leaveSeat();
                self(data).m_finishedSeat = self(data).m_seatName;
                self(data).watchSeat();
            },
        .primary_selection = [](void* data, Device*, Offer* offer) { self(data).forget(offer); },
    };

    WaylandConnection& m_connection;
    Manager* m_manager;
    wl_seat* m_seat = nullptr;
    std::uint32_t m_seatName = 0;     ///< The compositor's numbers of seats; 0 is none's.
    std::uint32_t m_finishedSeat = 0; ///< The last one that has gone.
    Device* m_device = nullptr;
    Offer* m_current = nullptr;
    std::vector<KnownOffer> m_offers; ///< The current one, and those that are being told of.
};

} // namespace

std::unique_ptr<WaylandClipboard> WaylandClipboard::make(WaylandConnection& connection) {
    if (connection.offers(ExtDataControl::interface().name))
        return std::make_unique<DataControlClipboard<ExtDataControl>>(connection);
    if (connection.offers(WlrDataControl::interface().name))
        return std::make_unique<DataControlClipboard<WlrDataControl>>(connection);
    return nullptr;
}

} // namespace framora
