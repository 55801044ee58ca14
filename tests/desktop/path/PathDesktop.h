#pragma once

#include "desktop/path/DemoDesktop.h"
#include "desktop/path/FramoraDriver.h"

namespace framora {

/// What the tests of the whole path stand on: a desktop with a wallpaper, and Framora's user.
class PathDesktop {
protected:
    static DesktopOptions options(QSize size = {1440, 900}) {
        DesktopOptions options;
        options.size = size;
        options.accessibility = true;
        return options;
    }

    explicit PathDesktop(const DesktopOptions& wanted = options()) : m_desktop(wanted), m_driver(m_desktop) {
        display().setWallpaper(demoWallpaper(wanted.size));
    }
    ~PathDesktop() = default;

    DesktopDisplay& display() { return m_desktop.display(); }
    QString scratch(const char* name) const {
        return m_desktop.scratchPath() + QLatin1Char('/') + QLatin1String(name);
    }

    VirtualDesktop m_desktop;
    FramoraDriver m_driver;
};

} // namespace framora
