#pragma once

class QQmlEngine;

namespace framora {

/// Makes the module Framora.Editor known to `engine`.
void registerEditorViews(QQmlEngine& engine);

} // namespace framora
