#include "platform/wayland/WaylandScreens.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>

namespace framora {

namespace {

/// What Qt makes up where there is no monitor.
Screen placeholder() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen)
        return {QRect(0, 0, 1920, 1080), 1, {}};
    const double ratio = screen->devicePixelRatio();
    return {QRect(QPoint(), (QSizeF(screen->size()) * ratio).toSize().expandedTo({1, 1})), ratio, {}};
}

} // namespace

std::vector<Screen> WaylandScreens::screens() {
    // An output that has just come is named in one round and tells of itself in the next.
    m_connection.roundTrip();
    if (!std::ranges::all_of(
            m_outputs.all(), &WaylandOutput::isKnown,
            [](const auto& output) -> const auto& { return *output; }))
        m_connection.roundTrip();
    std::vector<Screen> screens;
    for (const auto& output : m_outputs.all()) {
        if (!output->isKnown())
            continue;
        const double ratio = output->pixelRatio();
        const QPoint origin = (QPointF(output->logicalPosition()) * ratio).toPoint();
        screens.push_back({QRect(origin, output->pixelSize()), ratio, output->name()});
    }
    if (!screens.empty())
        m_last = screens;
    else if (m_last.empty())
        m_last = {placeholder()};
    return m_last;
}

} // namespace framora
