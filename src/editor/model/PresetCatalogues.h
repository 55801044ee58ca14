#pragma once

#include "editor/model/Color.h"
#include "editor/model/SimpleGradientConfig.h"

#include <QList>
#include <QString>
#include <QUuid>

namespace framora {

// Presets are told apart by `id`, made when the record is; names repeat. Equality compares every field.

struct MagicPreset {
    Q_GADGET
    Q_PROPERTY(QUuid id MEMBER id)
    Q_PROPERTY(QList<framora::Color> colors MEMBER colors)
public:
    QUuid id = QUuid::createUuid();
    QList<Color> colors = {};

    bool operator==(const MagicPreset&) const = default;
};

struct SolidColor {
    Q_GADGET
    Q_PROPERTY(QUuid id MEMBER id)
    Q_PROPERTY(framora::Color color MEMBER color)
public:
    QUuid id = QUuid::createUuid();
    Color color = {};

    bool operator==(const SolidColor&) const = default;
};

struct GradientPreset {
    Q_GADGET
    Q_PROPERTY(QUuid id MEMBER id)
    Q_PROPERTY(QList<framora::Color> colors MEMBER colors)
    Q_PROPERTY(double angle MEMBER angle)
public:
    QUuid id = QUuid::createUuid();
    QList<Color> colors = {};
    double angle = 0.0; ///< degrees

    bool operator==(const GradientPreset&) const = default;
};

struct ShadowScene {
    Q_GADGET
    Q_PROPERTY(QUuid id MEMBER id)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QList<framora::Color> colors MEMBER colors)
    Q_PROPERTY(bool isTexture MEMBER isTexture)
public:
    QUuid id = QUuid::createUuid();
    QString name = {};
    QList<Color> colors = {};
    bool isTexture = false;

    bool operator==(const ShadowScene&) const = default;
};

struct SimpleGradientPreset {
    Q_GADGET
    Q_PROPERTY(QUuid id MEMBER id)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(framora::SimpleGradientConfig config MEMBER config)
public:
    QUuid id = QUuid::createUuid();
    QString name = {};
    SimpleGradientConfig config = {};

    bool operator==(const SimpleGradientPreset&) const = default;
};

struct SocialMediaPreset {
    Q_GADGET
    Q_PROPERTY(QUuid id MEMBER id)
    Q_PROPERTY(QString platform MEMBER platform)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(int width MEMBER width)
    Q_PROPERTY(int height MEMBER height)
    Q_PROPERTY(QString icon MEMBER icon)
    Q_PROPERTY(QString ratio MEMBER ratio)
public:
    QUuid id = QUuid::createUuid();
    QString platform = {};
    QString name = {};
    int width = 0;      ///< pixels
    int height = 0;     ///< pixels
    QString icon = {};  ///< symbol name
    QString ratio = {}; ///< a label; not computed from the size

    bool operator==(const SocialMediaPreset&) const = default;
};

/// The built-in choices: built on first use, from any thread, and the same entries ever after.
namespace PresetCatalogues {

const QList<MagicPreset>& magicPresets();
const QList<SimpleGradientPreset>& simpleGradientPresets();
const QList<SocialMediaPreset>& socialMediaPresets();

} // namespace PresetCatalogues

} // namespace framora
