#include "screencapture/wayland/OutputList.h"

#include "screencapture/wayland/WaylandConnection.h"
#include "wayland/OutputLayout.h"

#include <utility>
#include <wayland-client-protocol.h>
#include <wayland-protocols/xdg-output-unstable-v1.h>

namespace framora {

namespace {

/// Whether the compositor can be handed a picture of that size.
bool fitsIntoBuffer(int width, int height) {
    return width > 0 && height > 0 && int64_t{width} * height <= INT32_MAX / 4;
}

} // namespace

/// What the compositor has told about one output so far.
struct OutputList::Entry {
    OutputList* list = nullptr;
    wl_output* output = nullptr;
    zxdg_output_v1* extra = nullptr;
    Output told;
    int modeWidth = 0;
    int modeHeight = 0;
    int wholeScale = 1;
    bool hasLogical = false;

    template <typename T> void set(T& member, T value) {
        if (member == value)
            return;
        member = std::move(value);
        list->touched();
    }
};

OutputList::OutputList(WaylandConnection& connection)
    : m_connection(connection),
      m_manager(connection.bind<zxdg_output_manager_v1>(zxdg_output_manager_v1_interface, 3)) {
    static const wl_output_listener outputListener{
        .geometry =
            [](void* data, wl_output*, int32_t x, int32_t y, int32_t, int32_t, int32_t, const char*,
               const char*, int32_t transform) {
                auto& entry = *static_cast<Entry*>(data);
                entry.set(entry.told.transform, transform);
                if (!entry.hasLogical) {
                    entry.set(entry.told.logical.x, x);
                    entry.set(entry.told.logical.y, y);
                }
            },
        .mode =
            [](void* data, wl_output*, uint32_t flags, int32_t width, int32_t height, int32_t) {
                auto& entry = *static_cast<Entry*>(data);
                if (!(flags & WL_OUTPUT_MODE_CURRENT))
                    return;
                entry.set(entry.modeWidth, width);
                entry.set(entry.modeHeight, height);
            },
        .done = [](void*, wl_output*) {},
        .scale =
            [](void* data, wl_output*, int32_t factor) {
                auto& entry = *static_cast<Entry*>(data);
                entry.set(entry.wholeScale, factor);
            },
        .name = [](void* data, wl_output*, const char* name) { static_cast<Entry*>(data)->told.name = name; },
        .description = [](void*, wl_output*, const char*) {},
    };
    static const zxdg_output_v1_listener extraListener{
        .logical_position =
            [](void* data, zxdg_output_v1*, int32_t x, int32_t y) {
                auto& entry = *static_cast<Entry*>(data);
                entry.hasLogical = true;
                entry.set(entry.told.logical.x, x);
                entry.set(entry.told.logical.y, y);
            },
        .logical_size =
            [](void* data, zxdg_output_v1*, int32_t width, int32_t height) {
                auto& entry = *static_cast<Entry*>(data);
                entry.set(entry.told.logical.width, width);
                entry.set(entry.told.logical.height, height);
            },
        .done = [](void*, zxdg_output_v1*) {},
        .name = [](void* data, zxdg_output_v1*,
                   const char* name) { static_cast<Entry*>(data)->told.name = name; },
        .description = [](void*, zxdg_output_v1*, const char*) {},
    };
    for (const auto& global : connection.globals()) {
        if (global.interface != wl_output_interface.name)
            continue;
        auto entry = std::make_unique<Entry>();
        entry->list = this;
        entry->output = static_cast<wl_output*>(connection.bind(global, wl_output_interface, 4));
        entry->told.handle = entry->output;
        wl_output_add_listener(entry->output, &outputListener, entry.get());
        if (m_manager) {
            entry->extra = zxdg_output_manager_v1_get_xdg_output(m_manager, entry->output);
            zxdg_output_v1_add_listener(entry->extra, &extraListener, entry.get());
        }
        m_entries.push_back(std::move(entry));
    }
    connection.onOutputsChanged([this] { touched(); });
}

OutputList::~OutputList() {
    m_connection.onOutputsChanged({});
    for (const auto& entry : m_entries) {
        if (entry->extra)
            zxdg_output_v1_destroy(entry->extra);
        wl_output_destroy(entry->output);
    }
    if (m_manager)
        zxdg_output_manager_v1_destroy(m_manager);
}

std::vector<Output> OutputList::take() {
    m_taken = true;
    m_changed = false;
    std::vector<Output> outputs;
    for (const auto& entry : m_entries) {
        Output output = entry->told;
        const bool onItsSide = output.transform % 2 == 1;
        output.pixelWidth = onItsSide ? entry->modeHeight : entry->modeWidth;
        output.pixelHeight = onItsSide ? entry->modeWidth : entry->modeHeight;
        const auto [x, y, width, height, ratio] =
            outputLayout({output.pixelWidth, output.pixelHeight, output.logical.x, output.logical.y,
                          output.logical.width, output.logical.height, entry->wholeScale});
        output.logical = {x, y, width, height};
        output.scale = ratio;
        if (output.logical.empty() || !fitsIntoBuffer(output.pixelWidth, output.pixelHeight))
            continue;
        outputs.push_back(std::move(output));
    }
    return outputs;
}

} // namespace framora
