#pragma once

class QQmlEngine;

namespace framora {

/// Makes the module Framora.Controls, and every other under qrc:/framora/qml, known to `engine`.
void registerControls(QQmlEngine& engine);

} // namespace framora
