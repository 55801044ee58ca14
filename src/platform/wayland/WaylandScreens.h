#pragma once

#include "platform/Screens.h"
#include "platform/wayland/WaylandOutputs.h"

namespace framora {

/// The outputs of the compositor, the main one first. Each has a space of pixels of its own: an output's
/// frame begins at its place in the compositor's space times its own ratio.
class WaylandScreens final : public Screens {
public:
    /// Both outlive this.
    WaylandScreens(WaylandConnection& connection, const WaylandOutputs& outputs)
        : m_connection(connection), m_outputs(outputs) {}
    /// While a session has no output at all, those it had last.
    std::vector<Screen> screens() override;

private:
    WaylandConnection& m_connection;
    const WaylandOutputs& m_outputs;
    std::vector<Screen> m_last;
};

} // namespace framora
