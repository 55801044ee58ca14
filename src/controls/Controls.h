#pragma once

#include <QVariantMap>

class QObject;
class QQmlEngine;

namespace framora {

class Appearance;

/// Makes the module Framora.Controls, and every other under qrc:/framora/qml, known to `engine`.
void registerControls(QQmlEngine& engine);

/// What a ThemedView takes in of the desktop's appearance, for when it is made and for when that changes.
QVariantMap lookOf(const Appearance& appearance);
/// `root` may be null: a window whose view is not there yet.
void showLook(QObject* root, const Appearance& appearance);

} // namespace framora
