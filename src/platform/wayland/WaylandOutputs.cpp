#include "platform/wayland/WaylandOutputs.h"

#include <algorithm>
#include <utility>
#include <wayland-protocols/xdg-output-unstable-v1.h>

namespace framora {

namespace {

constexpr std::uint32_t highestOutputVersion = 4;
constexpr std::uint32_t highestManagerVersion = 3;

} // namespace

const wl_output_listener WaylandOutput::listener{
    [](void* data, wl_output*, std::int32_t x, std::int32_t y, std::int32_t, std::int32_t, std::int32_t,
       const char*, const char*, std::int32_t transform) {
        auto& self = *static_cast<WaylandOutput*>(data);
        self.m_position = {x, y};
        self.m_transform = transform;
        if (!self.m_logical)
            self.m_logicalPosition = self.m_position;
    },
    [](void* data, wl_output*, std::uint32_t flags, std::int32_t width, std::int32_t height, std::int32_t) {
        if (flags & WL_OUTPUT_MODE_CURRENT)
            static_cast<WaylandOutput*>(data)->m_mode = {width, height};
    },
    [](void* data, wl_output*) {
        const auto& self = *static_cast<WaylandOutput*>(data);
        self.m_told(self);
    },
    [](void* data, wl_output*, std::int32_t scale) {
        static_cast<WaylandOutput*>(data)->m_scale = std::max(1, scale);
    },
    [](void* data, wl_output*, const char* name) {
        static_cast<WaylandOutput*>(data)->m_name = QString::fromUtf8(name);
    },
    [](void*, wl_output*, const char*) {},
};

const zxdg_output_v1_listener WaylandOutput::logicalListener{
    [](void* data, zxdg_output_v1*, std::int32_t x, std::int32_t y) {
        static_cast<WaylandOutput*>(data)->m_logicalPosition = {x, y};
    },
    [](void* data, zxdg_output_v1*, std::int32_t width, std::int32_t height) {
        static_cast<WaylandOutput*>(data)->m_logicalSize = {width, height};
    },
    [](void*, zxdg_output_v1*) {},
    [](void* data, zxdg_output_v1*, const char* name) {
        static_cast<WaylandOutput*>(data)->m_name = QString::fromUtf8(name);
    },
    [](void*, zxdg_output_v1*, const char*) {},
};

WaylandOutput::WaylandOutput(WaylandConnection& connection, const WaylandConnection::Global& global,
                             Told told)
    : m_globalName(global.name), m_told(std::move(told)),
      m_output(connection.bind<wl_output>(global, wl_output_interface, highestOutputVersion)) {
    wl_output_add_listener(m_output, &listener, this);
}

WaylandOutput::~WaylandOutput() {
    if (m_logical)
        zxdg_output_v1_destroy(m_logical);
    if (wl_output_get_version(m_output) >= WL_OUTPUT_RELEASE_SINCE_VERSION)
        wl_output_release(m_output);
    else
        wl_output_destroy(m_output);
}

void WaylandOutput::describeBy(zxdg_output_manager_v1& manager) {
    m_logical = zxdg_output_manager_v1_get_xdg_output(&manager, m_output);
    zxdg_output_v1_add_listener(m_logical, &logicalListener, this);
}

QSize WaylandOutput::pixelSize() const {
    // Every other transform is a quarter turn, mirrored or not.
    return m_transform % 2 == 0 ? m_mode : m_mode.transposed();
}

OutputLayout WaylandOutput::layout() const {
    const QSize pixels = pixelSize();
    return outputLayout({pixels.width(), pixels.height(), m_logicalPosition.x(), m_logicalPosition.y(),
                         m_logicalSize.width(), m_logicalSize.height(), m_scale});
}

WaylandOutputs::WaylandOutputs(WaylandConnection& connection)
    : m_connection(connection), m_manager(connection.bind<zxdg_output_manager_v1>(
                                    zxdg_output_manager_v1_interface, highestManagerVersion)) {
    for (const auto& global : connection.globals())
        add(global);
    connection.onGlobalAdded([this](const auto& global) { add(global); });
    connection.onGlobalRemoved([this](const auto& global) { remove(global); });
    connection.roundTrip();
}

WaylandOutputs::~WaylandOutputs() {
    m_outputs.clear();
    if (m_manager)
        zxdg_output_manager_v1_destroy(m_manager);
}

void WaylandOutputs::add(const WaylandConnection::Global& global) {
    if (global.interface != wl_output_interface.name)
        return;
    m_outputs.push_back(
        std::make_unique<WaylandOutput>(m_connection, global, [this](const WaylandOutput& output) {
            if (m_told && output.isKnown())
                m_told(output);
        }));
    if (m_manager)
        m_outputs.back()->describeBy(*m_manager);
}

void WaylandOutputs::remove(const WaylandConnection::Global& global) {
    std::erase_if(m_outputs, [&](const auto& output) { return output->globalName() == global.name; });
}

const WaylandOutput* WaylandOutputs::named(const QString& name) const {
    const auto found = std::ranges::find_if(
        m_outputs, [&](const auto& output) { return output->isKnown() && output->name() == name; });
    return found == m_outputs.end() ? nullptr : found->get();
}

const WaylandOutput* WaylandOutputs::of(const wl_output* output) const {
    const auto found = std::ranges::find_if(
        m_outputs, [&](const auto& known) { return static_cast<wl_output*>(*known) == output; });
    return found == m_outputs.end() ? nullptr : found->get();
}

} // namespace framora
