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

/// Qt's screen in pixels: its origin is the server's, its size is in points.
QRect pixelFrame(const QScreen& screen) {
    const double ratio = screen.devicePixelRatio();
    return {screen.geometry().topLeft(),
            QSize(qRound(screen.size().width() * ratio), qRound(screen.size().height() * ratio))};
}

/// What Qt gives the windows on that monitor: each may have a ratio of its own. Qt knows outputs, the server
/// also monitors that are a part of one, or several together.
double ratioOf(const QString& name, const QRect& frame) {
    const auto screens = QGuiApplication::screens();
    for (const QScreen* screen : screens)
        if (screen->name() == name)
            return screen->devicePixelRatio();
    for (const QScreen* screen : screens)
        if (pixelFrame(*screen).contains(frame.center()))
            return screen->devicePixelRatio();
    return qGuiApp->devicePixelRatio();
}

} // namespace

void X11Screens::deliverEventsLater() {
    QMetaObject::invokeMethod(
        &m_connection, [&connection = m_connection] { connection.processEvents(); }, Qt::QueuedConnection);
}

std::vector<Screen> X11Screens::screens() {
    std::vector<Screen> screens;
    deliverEventsLater();
    const auto* randr = xcb_get_extension_data(m_connection, &xcb_randr_id);
    if (m_connection.isValid() && randr && randr->present) {
        const XcbReply<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(
            m_connection, xcb_randr_get_monitors(m_connection, m_connection.root(), true), nullptr));
        if (reply) {
            for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem;
                 xcb_randr_monitor_info_next(&it)) {
                const QRect frame(it.data->x, it.data->y, it.data->width, it.data->height);
                const QString name = atomName(m_connection, it.data->name);
                if (!frame.isEmpty())
                    screens.insert(it.data->primary ? screens.begin() : screens.end(),
                                   Screen{frame, ratioOf(name, frame), name});
            }
        }
    }
    if (screens.empty()) {
        for (const QScreen* screen : QGuiApplication::screens())
            screens.push_back({pixelFrame(*screen), screen->devicePixelRatio(), screen->name()});
    }
    return screens;
}

std::optional<Screen> X11Screens::screenInUse() {
    const auto all = screens();
    if (m_connection.isValid()) {
        const XcbReply<xcb_query_pointer_reply_t> pointer(xcb_query_pointer_reply(
            m_connection, xcb_query_pointer(m_connection, m_connection.root()), nullptr));
        for (const Screen& screen : all)
            if (pointer && pointer->same_screen &&
                screen.pixelFrame.contains(pointer->root_x, pointer->root_y))
                return screen;
    }
    return all.empty() ? std::nullopt : std::optional(all.front());
}

} // namespace framora
