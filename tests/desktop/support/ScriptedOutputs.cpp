#include "desktop/support/ScriptedOutputs.h"

#include "desktop/support/PaintedSurface.h"

#include <wayland-server-protocol.h>
#include <wayland-server-protocols/xdg-output-unstable-v1.h>

namespace framora {

namespace {

// Larger ones are only talked of.
constexpr int largestPicture = 4096;

QImage pictureOf(const ScriptedOutput& output) {
    const bool drawn = !output.mode.isEmpty() && output.mode.width() <= largestPicture &&
                       output.mode.height() <= largestPicture;
    return drawn ? PaintedSurface::pattern(output.mode, int(output.name.size())) : QImage();
}

} // namespace

QSize ScriptedOutputs::Monitor::logicalSize() const {
    if (!told.logicalSize.isNull())
        return told.logicalSize;
    const QSize turned = told.transform % 2 ? told.mode.transposed() : told.mode;
    return turned / std::max(1, told.scale);
}

ScriptedOutputs::ScriptedOutputs(ScriptedPieces& pieces) : m_pieces(pieces) {
    offerGlobal(pieces.display, zxdg_output_manager_v1_interface, pieces.script.xdgOutput, &pieces,
                bindManager);
    for (const ScriptedOutput& output : pieces.script.outputs)
        add(output);
}

ScriptedOutputs::~ScriptedOutputs() = default;

void ScriptedOutputs::add(const ScriptedOutput& output) {
    auto monitor = std::make_unique<Monitor>();
    monitor->told = output;
    monitor->picture = pictureOf(output);
    monitor->pieces = &m_pieces;
    monitor->global =
        offerGlobal(m_pieces.display, wl_output_interface, m_pieces.script.output, monitor.get(), bindOutput);
    m_monitors.push_back(std::move(monitor));
}

ScriptedOutputs::Monitor* ScriptedOutputs::named(const QString& name) {
    const auto found = std::ranges::find_if(
        m_monitors, [&](const auto& monitor) { return !monitor->gone && monitor->told.name == name; });
    return found == m_monitors.end() ? nullptr : found->get();
}

ScriptedOutputs::Monitor* ScriptedOutputs::first() {
    const auto found = std::ranges::find_if(m_monitors, [](const auto& monitor) { return !monitor->gone; });
    return found == m_monitors.end() ? nullptr : found->get();
}

void ScriptedOutputs::remove(const QString& name) {
    if (Monitor* const monitor = named(name)) {
        monitor->gone = true;
        wl_global_remove(monitor->global);
    }
}

void ScriptedOutputs::change(const QString& name, const std::function<void(ScriptedOutput&)>& edit) {
    Monitor* const monitor = named(name);
    if (!monitor)
        return;
    edit(monitor->told);
    monitor->picture = pictureOf(monitor->told);
    for (wl_resource* extra : monitor->extras)
        tellExtra(*monitor, extra);
    for (wl_resource* output : monitor->resources)
        tell(*monitor, output);
}

void ScriptedOutputs::bindOutput(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
    static constexpr struct wl_output_interface requests { .release = destroyResource };
    auto& monitor = *static_cast<Monitor*>(data);
    wl_resource* const output =
        makeResource(client, wl_output_interface, int(version), id, &requests, &monitor,
                     [](wl_resource* gone) { std::erase(behind<Monitor>(gone).resources, gone); });
    monitor.resources.push_back(output);
    if (!monitor.gone)
        tell(monitor, output);
}

void ScriptedOutputs::tell(const Monitor& monitor, wl_resource* output) {
    const ScriptedOutput& told = monitor.told;
    const int version = wl_resource_get_version(output);
    wl_output_send_geometry(output, told.position.x(), told.position.y(), 0, 0, WL_OUTPUT_SUBPIXEL_UNKNOWN,
                            "Framora", "Scripted", told.transform);
    wl_output_send_mode(output, WL_OUTPUT_MODE_CURRENT, told.mode.width(), told.mode.height(), 60000);
    if (version >= WL_OUTPUT_SCALE_SINCE_VERSION)
        wl_output_send_scale(output, told.scale);
    if (version >= WL_OUTPUT_NAME_SINCE_VERSION)
        wl_output_send_name(output, told.name.toUtf8().constData());
    if (version >= WL_OUTPUT_DONE_SINCE_VERSION)
        wl_output_send_done(output);
}

void ScriptedOutputs::bindManager(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
    static constexpr struct zxdg_output_v1_interface extraRequests { .destroy = destroyResource };
    static constexpr struct zxdg_output_manager_v1_interface requests {
        .destroy = destroyResource,
        .get_xdg_output = [](wl_client* asking, wl_resource* manager, std::uint32_t extraId,
                             wl_resource* output) {
            auto& monitor = behind<Monitor>(output);
            wl_resource* const extra = makeResource(
                asking, zxdg_output_v1_interface, wl_resource_get_version(manager), extraId, &extraRequests,
                &monitor, [](wl_resource* gone) { std::erase(behind<Monitor>(gone).extras, gone); });
            monitor.extras.push_back(extra);
            if (!monitor.gone)
                tellExtra(monitor, extra);
        },
    };
    makeResource(client, zxdg_output_manager_v1_interface, int(version), id, &requests, data);
}

void ScriptedOutputs::tellExtra(const Monitor& monitor, wl_resource* extra) {
    const QSize size = monitor.logicalSize();
    zxdg_output_v1_send_logical_position(extra, monitor.told.position.x(), monitor.told.position.y());
    zxdg_output_v1_send_logical_size(extra, size.width(), size.height());
    if (wl_resource_get_version(extra) >= ZXDG_OUTPUT_V1_NAME_SINCE_VERSION)
        zxdg_output_v1_send_name(extra, monitor.told.name.toUtf8().constData());
    zxdg_output_v1_send_done(extra);
}

} // namespace framora
