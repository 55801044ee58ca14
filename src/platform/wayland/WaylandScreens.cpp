#include "platform/wayland/WaylandScreens.h"

#include <QGuiApplication>
#include <QScreen>

namespace framora {

std::vector<Screen> WaylandScreens::screens() {
    std::vector<Screen> screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        const double own = screen->devicePixelRatio();
        const QSize pixels(qRound(screen->size().width() * own), qRound(screen->size().height() * own));
        screens.push_back({QRect(screen->geometry().topLeft(), pixels), own, screen->name()});
    }
    return screens;
}

} // namespace framora
