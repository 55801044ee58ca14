#pragma once

class QQmlEngine;

namespace framora {

/// Makes the module Framora.Settings known to `engine`.
void registerSettingsViews(QQmlEngine& engine);

} // namespace framora
