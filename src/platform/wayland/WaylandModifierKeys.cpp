#include "platform/wayland/WaylandModifierKeys.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace framora {

namespace {

/// By what the key does, not where it is: a layout's third level is no Alt.
std::uint64_t bitOf(int key) {
    switch (key) {
    case Qt::Key_Shift:
        return KeyModifier::shift;
    case Qt::Key_Control:
        return KeyModifier::control;
    case Qt::Key_Alt:
        return KeyModifier::option;
    case Qt::Key_Meta:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
        return KeyModifier::command;
    default:
        return 0;
    }
}

} // namespace

std::uint64_t modifierFlagsOf(const QKeyEvent& press) {
    std::uint64_t flags = 0;
    const auto held = press.modifiers();
    if (held & Qt::ShiftModifier)
        flags |= KeyModifier::shift;
    if (held & Qt::ControlModifier)
        flags |= KeyModifier::control;
    if (held & Qt::AltModifier)
        flags |= KeyModifier::option;
    if (held & Qt::MetaModifier)
        flags |= KeyModifier::command;
    return flags;
}

WaylandModifierKeys::WaylandModifierKeys(WindowKeyMonitors& monitors) : m_monitors(monitors) {
    QCoreApplication::instance()->installEventFilter(this);
}

bool WaylandModifierKeys::eventFilter(QObject* watched, QEvent* event) {
    if (!watched->isWindowType())
        return false;
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
        changed(static_cast<const QKeyEvent&>(*event), event->type() == QEvent::KeyPress);
    } else if (event->type() == QEvent::FocusOut && !m_held.empty()) {
        // What is let go of elsewhere is not told here, and would seem to be held for ever.
        m_held.clear();
        m_monitors.offerModifierChange(0, 0);
    }
    return false;
}

void WaylandModifierKeys::changed(const QKeyEvent& event, bool isDown) {
    const std::uint64_t bit = bitOf(event.key());
    if (bit == 0)
        return;
    if (isDown)
        m_held.insert_or_assign(event.nativeScanCode(), bit);
    else
        m_held.erase(event.nativeScanCode());
    // The state in the event is the one before it. The other one of the two keys may still be down.
    std::uint64_t flags = modifierFlagsOf(event) & ~bit;
    for (const auto& [code, held] : m_held)
        flags |= held;
    m_monitors.offerModifierChange(WindowKeyMonitors::virtualKeyOf(event.nativeScanCode()).value_or(0),
                                   flags);
}

} // namespace framora
