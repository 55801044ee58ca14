#pragma once

class QQmlEngine;

namespace framora {

/// Makes the module Framora.Editor, and the controls it is made of, known to `engine`.
void registerEditorViews(QQmlEngine& engine);

} // namespace framora
