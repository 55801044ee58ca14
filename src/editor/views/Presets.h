#pragma once

#include <QObject>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

namespace framora {

/// The catalogues in the terms of views, in their order.
class Presets : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    /// The colours of each.
    Q_PROPERTY(QVariantList magicPresets READ magicPresets CONSTANT)
    /// Maps with "name", "colors" (those in use) and "angle".
    Q_PROPERTY(QVariantList gradientPresets READ gradientPresets CONSTANT)
    /// Maps with "platform" and "presets": maps with "index" in the catalogue, "name", "width", "height",
    /// "icon", "ratio".
    Q_PROPERTY(QVariantList socialPlatforms READ socialPlatforms CONSTANT)
    Q_PROPERTY(int socialPresetCount READ socialPresetCount CONSTANT)

public:
    using QObject::QObject;
    QVariantList magicPresets() const;
    QVariantList gradientPresets() const;
    QVariantList socialPlatforms() const;
    int socialPresetCount() const;
};

} // namespace framora
