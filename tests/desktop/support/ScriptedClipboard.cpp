#include "desktop/support/ScriptedClipboard.h"

#include <unistd.h>
#include <utility>
#include <wayland-server-protocol.h>
#include <wayland-server-protocols/ext-data-control-v1.h>
#include <wayland-server-protocols/wlr-data-control-unstable-v1.h>

namespace framora {

/// The two protocols are one on the wire, apart from the names of their interfaces.
struct ScriptedClipboard::Kind {
    const wl_interface& manager;
    const wl_interface& device;
    const wl_interface& source;
    const wl_interface& offer;
};

const ScriptedClipboard::Kind ScriptedClipboard::kinds[2] = {
    {ext_data_control_manager_v1_interface, ext_data_control_device_v1_interface,
     ext_data_control_source_v1_interface, ext_data_control_offer_v1_interface},
    {zwlr_data_control_manager_v1_interface, zwlr_data_control_device_v1_interface,
     zwlr_data_control_source_v1_interface, zwlr_data_control_offer_v1_interface},
};

ScriptedClipboard::ScriptedClipboard(ScriptedPieces& pieces) : m_pieces(pieces) {
    offerGlobal(pieces.display, kinds[0].manager, pieces.script.extDataControl, this, bind<0>);
    offerGlobal(pieces.display, kinds[1].manager, pieces.script.wlrDataControl, this, bind<1>);
}

ScriptedClipboard::~ScriptedClipboard() = default;

template <int kind>
void ScriptedClipboard::bind(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
    static constexpr struct zwlr_data_control_manager_v1_interface requests {
        .create_data_source =
            [](wl_client* asking, wl_resource* manager, std::uint32_t source) {
                behind<ScriptedClipboard>(manager).addSource(asking, kinds[kind],
                                                             wl_resource_get_version(manager), source);
            },
        .get_data_device =
            [](wl_client* asking, wl_resource* manager, std::uint32_t device, wl_resource*) {
                behind<ScriptedClipboard>(manager).addDevice(asking, kinds[kind],
                                                             wl_resource_get_version(manager), device);
            },
        .destroy = destroyResource,
    };
    makeResource(client, kinds[kind].manager, int(version), id, &requests, data);
}

void ScriptedClipboard::addSource(wl_client* client, const Kind& kind, int version, std::uint32_t id) {
    static constexpr struct zwlr_data_control_source_v1_interface requests {
        .offer = [](wl_client*, wl_resource* source,
                    const char* type) { behind<Source>(source).types.emplace_back(type); },
        .destroy = destroyResource,
    };
    auto* const source = std::make_unique<Source>(Source{this, nullptr, {}}).release();
    source->resource =
        makeResource(client, kind.source, version, id, &requests, source, [](wl_resource* resource) {
            const std::unique_ptr<Source> gone(&behind<Source>(resource));
            if (gone->clipboard->m_source != gone.get())
                return;
            gone->clipboard->m_source = nullptr;
            for (wl_resource* device : gone->clipboard->m_devices)
                gone->clipboard->tell(device);
        });
}

void ScriptedClipboard::addDevice(wl_client* client, const Kind& kind, int version, std::uint32_t id) {
    static constexpr struct zwlr_data_control_device_v1_interface requests {
        .set_selection =
            [](wl_client*, wl_resource* device, wl_resource* source) {
                behind<ScriptedClipboard>(device).setSource(source ? &behind<Source>(source) : nullptr);
            },
        .destroy = destroyResource, .set_primary_selection = [](wl_client*, wl_resource*, wl_resource*) {},
    };
    wl_resource* const device =
        makeResource(client, kind.device, version, id, &requests, this,
                     [](wl_resource* gone) { std::erase(behind<ScriptedClipboard>(gone).m_devices, gone); });
    m_devices.push_back(device);
    if (m_pieces.script.finishDevices)
        zwlr_data_control_device_v1_send_finished(device);
    else
        tell(device);
}

void ScriptedClipboard::setSource(Source* source) {
    if (source && m_pieces.script.cancelSources) {
        zwlr_data_control_source_v1_send_cancelled(source->resource);
        return;
    }
    Source* const before = std::exchange(m_source, source);
    if (before && before != source)
        zwlr_data_control_source_v1_send_cancelled(before->resource);
    m_content.reset();
    for (wl_resource* device : m_devices)
        tell(device);
}

void ScriptedClipboard::offer(Content content) {
    setSource(nullptr);
    m_content = std::move(content);
    for (wl_resource* device : m_devices)
        tell(device);
}

void ScriptedClipboard::tell(wl_resource* device) {
    static constexpr struct zwlr_data_control_offer_v1_interface requests {
        .receive = [](wl_client*, wl_resource* offer, const char* type,
                      std::int32_t descriptor) { behind<ScriptedClipboard>(offer).send(type, descriptor); },
        .destroy = destroyResource,
    };
    if (!m_source && !m_content) {
        zwlr_data_control_device_v1_send_selection(device, nullptr);
        return;
    }
    const bool isExt = std::string_view(wl_resource_get_class(device)) == kinds[0].device.name;
    wl_resource* const offer = makeResource(
        wl_resource_get_client(device), kinds[isExt ? 0 : 1].offer, wl_resource_get_version(device), 0,
        &requests, this, [](wl_resource* gone) { --behind<ScriptedClipboard>(gone).m_offers; });
    ++m_offers;
    zwlr_data_control_device_v1_send_data_offer(device, offer);
    for (const QByteArray& type : m_source ? m_source->types : m_content->types)
        zwlr_data_control_offer_v1_send_offer(offer, type.constData());
    zwlr_data_control_device_v1_send_selection(device, offer);
}

void ScriptedClipboard::send(const QByteArray& type, int descriptor) {
    if (m_content && m_content->send) {
        m_content->send(type, descriptor);
        return;
    }
    if (m_source)
        zwlr_data_control_source_v1_send_send(m_source->resource, type.constData(), descriptor);
    close(descriptor);
}

std::vector<QByteArray> ScriptedClipboard::ownedTypes() const {
    return m_source ? m_source->types : std::vector<QByteArray>();
}

void ScriptedClipboard::receive(const QByteArray& type, int descriptor) {
    send(type, descriptor);
}

void ScriptedClipboard::finishDevices() {
    for (wl_resource* device : m_devices)
        zwlr_data_control_device_v1_send_finished(device);
}

} // namespace framora
