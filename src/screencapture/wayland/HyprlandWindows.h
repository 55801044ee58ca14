#pragma once

#include "screencapture/wayland/LocalQuestion.h"
#include "screencapture/wayland/WindowSource.h"

#include <string_view>

namespace framora {

/// Windows by Hyprland's own account, over the socket of the instance that HYPRLAND_INSTANCE_SIGNATURE names.
class HyprlandWindows : public WindowSource {
public:
    HyprlandWindows();

    bool available() const override { return m_clients.asked() && m_monitors.asked(); }
    std::optional<WindowStack> windows() override;

private:
    LocalQuestion m_clients;
    LocalQuestion m_monitors;
    bool m_read = false;
    std::optional<WindowStack> m_windows;
};

/// The windows to be seen in Hyprland's answers to "j/clients" and "j/monitors": those on workspaces that a
/// monitor shows, the tiled ones lowest, of the others the one that had the focus last topmost. Nothing when
/// a text is no such answer; windows that make no sense in it are left out.
std::optional<WindowStack> windowsOfHyprland(std::string_view clients, std::string_view monitors);

} // namespace framora
