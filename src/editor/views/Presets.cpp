#include "editor/views/Presets.h"

#include "editor/model/ColorConversion.h"
#include "editor/model/PresetCatalogues.h"

#include <QColor>

namespace framora {
namespace {

template <class Colors> QVariant toColors(const Colors& colors) {
    QVariantList list;
    for (const Color& color : colors)
        list.append(toQColor(color));
    return list;
}

} // namespace

QVariantList Presets::magicPresets() const {
    QVariantList list;
    for (const MagicPreset& preset : PresetCatalogues::magicPresets())
        list.append(toColors(preset.colors));
    return list;
}

QVariantList Presets::gradientPresets() const {
    QVariantList list;
    for (const SimpleGradientPreset& preset : PresetCatalogues::simpleGradientPresets()) {
        QList<Color> colors{preset.config.color1, preset.config.color2};
        if (preset.config.useThreeColors)
            colors.append(preset.config.color3);
        list.append(QVariantMap{{QStringLiteral("name"), preset.name},
                                {QStringLiteral("colors"), toColors(colors)},
                                {QStringLiteral("angle"), preset.config.angle}});
    }
    return list;
}

QVariantList Presets::socialPlatforms() const {
    QVariantList platforms;
    QVariantList presets;
    const auto& catalogue = PresetCatalogues::socialMediaPresets();
    for (qsizetype i = 0; i < catalogue.size(); ++i) {
        const SocialMediaPreset& preset = catalogue[i];
        presets.append(QVariantMap{{QStringLiteral("index"), i},
                                   {QStringLiteral("name"), preset.name},
                                   {QStringLiteral("width"), preset.width},
                                   {QStringLiteral("height"), preset.height},
                                   {QStringLiteral("icon"), preset.icon},
                                   {QStringLiteral("ratio"), preset.ratio}});
        // Entries of one platform stand together.
        if (i + 1 == catalogue.size() || catalogue[i + 1].platform != preset.platform) {
            platforms.append(QVariantMap{{QStringLiteral("platform"), preset.platform},
                                         {QStringLiteral("presets"), presets}});
            presets.clear();
        }
    }
    return platforms;
}

int Presets::socialPresetCount() const {
    return int(PresetCatalogues::socialMediaPresets().size());
}

} // namespace framora
