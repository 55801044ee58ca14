#pragma once

#include <functional>

namespace framora {

class SettingsWindow;
struct SettingsServices;

/// What the windows' module exports: the settings window over these services; the caller owns the result.
using MakeSettingsWindow = SettingsWindow*(const SettingsServices&, std::function<void()> onWillClose);
inline constexpr char makeSettingsWindowName[] = "framora_makeSettingsWindow";

} // namespace framora
