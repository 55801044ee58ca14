#include "screencapture/Monitors.h"

#include "screencapture/XConnection.h"

#include <xcb/randr.h>

namespace framora {

std::vector<Rect> monitorsOf(const XConnection& connection) {
    const Rect root = connection.rootRect();
    if (root.empty())
        return {};
    if (!connection.hasRandr())
        return {root};
    const auto reply = connection.reply(xcb_randr_get_monitors(connection, connection.root(), 1),
                                        xcb_randr_get_monitors_reply);
    if (!reply)
        return {root};
    std::vector<Rect> monitors;
    for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem;
         xcb_randr_monitor_info_next(&it)) {
        const Rect monitor = Rect{it.data->x, it.data->y, it.data->width, it.data->height}.intersected(root);
        // Mirrored outputs are one place of the screen.
        if (!monitor.empty() && std::find(monitors.begin(), monitors.end(), monitor) == monitors.end())
            monitors.push_back(monitor);
    }
    return monitors;
}

} // namespace framora
