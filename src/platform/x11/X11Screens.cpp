#include "platform/x11/X11Screens.h"

#include <QGuiApplication>
#include <QScreen>
#include <xcb/randr.h>

namespace framora {

namespace {

QString atomName(xcb_connection_t* connection, xcb_atom_t atom) {
    const XcbReply<xcb_get_atom_name_reply_t> reply(
        xcb_get_atom_name_reply(connection, xcb_get_atom_name(connection, atom), nullptr));
    return reply ? QString::fromLatin1(xcb_get_atom_name_name(reply.get()),
                                       xcb_get_atom_name_name_length(reply.get()))
                 : QString();
}

} // namespace

std::vector<Screen> X11Screens::screens() {
    const double ratio = qGuiApp->devicePixelRatio();
    std::vector<Screen> screens;
    const auto* randr = xcb_get_extension_data(m_connection, &xcb_randr_id);
    if (m_connection.isValid() && randr && randr->present) {
        const XcbReply<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(
            m_connection, xcb_randr_get_monitors(m_connection, m_connection.root(), true), nullptr));
        if (reply) {
            for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem;
                 xcb_randr_monitor_info_next(&it)) {
                const QRect frame(it.data->x, it.data->y, it.data->width, it.data->height);
                if (!frame.isEmpty())
                    screens.insert(it.data->primary ? screens.begin() : screens.end(),
                                   Screen{frame, ratio, atomName(m_connection, it.data->name)});
            }
        }
    }
    if (screens.empty()) {
        for (const QScreen* screen : QGuiApplication::screens()) {
            const double own = screen->devicePixelRatio();
            const QSize pixels(qRound(screen->size().width() * own), qRound(screen->size().height() * own));
            screens.push_back({QRect(screen->geometry().topLeft(), pixels), own, screen->name()});
        }
    }
    return screens;
}

} // namespace framora
