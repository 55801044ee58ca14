#pragma once

#include "platform/desktop/WindowKeyMonitors.h"

#include <QObject>
#include <map>

class QKeyEvent;

namespace framora {

/// The KeyModifier bits of a key press, as they are before it.
std::uint64_t modifierFlagsOf(const QKeyEvent& press);

/// Tells recording monitors of modifier keys, as this program's own windows hear them: a compositor tells
/// nobody else.
class WaylandModifierKeys final : public QObject {
    Q_OBJECT

public:
    explicit WaylandModifierKeys(WindowKeyMonitors& monitors);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void changed(const QKeyEvent& event, bool isDown);

    WindowKeyMonitors& m_monitors;
    std::map<std::uint32_t, std::uint64_t> m_held; ///< The bit of each key that is down, by its scan code.
};

} // namespace framora
