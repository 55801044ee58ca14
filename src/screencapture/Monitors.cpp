#include "screencapture/Monitors.h"

#include "screencapture/XConnection.h"

#include <limits>
#include <string>
#include <xcb/randr.h>

namespace framora {

namespace {

std::string atomName(const XConnection& connection, xcb_atom_t atom) {
    const auto reply = connection.reply(xcb_get_atom_name(connection, atom), xcb_get_atom_name_reply);
    if (!reply)
        return {};
    return {xcb_get_atom_name_name(reply.get()),
            static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

} // namespace

std::vector<Monitor> monitorsOf(const XConnection& connection, const MonitorScales& scales) {
    const Rect root = connection.rootRect();
    if (root.empty())
        return {};
    const double ofResources =
        pixelRatioFromResources(connection.stringProperty(connection.root(), XCB_ATOM_RESOURCE_MANAGER));
    const std::vector<Monitor> whole{{root, scales.ratio(0, {}, ofResources)}};
    if (!connection.hasRandr())
        return whole;
    const auto reply = connection.reply(xcb_randr_get_monitors(connection, connection.root(), 1),
                                        xcb_randr_get_monitors_reply);
    if (!reply)
        return whole;
    std::vector<const xcb_randr_monitor_info_t*> told;
    for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem;
         xcb_randr_monitor_info_next(&it))
        told.insert(it.data->primary ? told.begin() : told.end(), it.data);
    std::vector<Monitor> monitors;
    for (const auto* info : told) {
        const Rect area = Rect{info->x, info->y, info->width, info->height}.intersected(root);
        const auto same = [&](const Monitor& monitor) { return monitor.area == area; };
        // Mirrored outputs are one place of the screen.
        if (area.empty() || std::any_of(monitors.begin(), monitors.end(), same))
            continue;
        // A name costs a round trip.
        const std::string name = scales.named() ? atomName(connection, info->name) : std::string();
        monitors.push_back({area, scales.ratio(monitors.size(), name, ofResources)});
    }
    return monitors;
}

double ratioAt(const std::vector<Monitor>& monitors, Point at) {
    double ratio = 1;
    long best = std::numeric_limits<long>::max();
    for (const Monitor& monitor : monitors) {
        const long distance = squaredDistance(monitor.area, at);
        if (distance < best) {
            best = distance;
            ratio = monitor.ratio;
        }
    }
    return ratio;
}

} // namespace framora
