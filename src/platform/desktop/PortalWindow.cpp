#include "platform/desktop/PortalWindow.h"

#include <QGuiApplication>
#include <QWindow>

namespace framora {

PortalWindowName x11PortalWindowName(QWindow* window) {
    if (!window || QGuiApplication::platformName() != u"xcb")
        return std::make_shared<QString>();
    return std::make_shared<QString>(QStringLiteral("x11:%1").arg(window->winId(), 0, 16));
}

} // namespace framora
