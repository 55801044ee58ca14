// The style's fields as views ask for them; the commands are in ScreenshotEditorViewModel.cpp.

#include "editor/model/ColorConversion.h"
#include "editor/model/ScreenshotEditorViewModel.h"

#include <algorithm>
#include <tuple>

namespace framora {
namespace {

template <class Preset> int indexOf(const std::optional<Preset>& selected, const QList<Preset>& catalogue) {
    const auto found = std::find_if(catalogue.begin(), catalogue.end(), [&](const Preset& preset) {
        return selected && preset.id == selected->id;
    });
    return found == catalogue.end() ? -1 : int(found - catalogue.begin());
}

} // namespace

QString ScreenshotEditorViewModel::mockupStyle() const {
    return rawValue(m_config.mockupStyle);
}
QString ScreenshotEditorViewModel::borderStyle() const {
    return rawValue(m_config.borderStyle);
}
QString ScreenshotEditorViewModel::backgroundType() const {
    return rawValue(m_config.backgroundType);
}
QString ScreenshotEditorViewModel::gradientStyle() const {
    return rawValue(m_config.gradientConfig.style);
}
QColor ScreenshotEditorViewModel::borderColor() const {
    return toQColor(m_config.borderColor);
}
QColor ScreenshotEditorViewModel::customColor() const {
    return toQColor(m_config.customColor);
}
QColor ScreenshotEditorViewModel::gradientColor1() const {
    return toQColor(m_config.gradientConfig.color1);
}
QColor ScreenshotEditorViewModel::gradientColor2() const {
    return toQColor(m_config.gradientConfig.color2);
}
QColor ScreenshotEditorViewModel::gradientColor3() const {
    return toQColor(m_config.gradientConfig.color3);
}

int ScreenshotEditorViewModel::magicPresetIndex() const {
    return indexOf(m_config.selectedMagicPreset, PresetCatalogues::magicPresets());
}

int ScreenshotEditorViewModel::gradientPresetIndex() const {
    // A gradient that was edited since still comes from its preset, but does not look like it any more.
    const auto& selected = m_config.selectedGradientPreset;
    const auto looks = [](const SimpleGradientConfig& gradient) {
        return std::tuple(gradient.style, gradient.color1, gradient.color2, gradient.useThreeColors,
                          gradient.useThreeColors ? gradient.color3 : Color(), gradient.angle);
    };
    if (!selected || looks(selected->config) != looks(m_config.gradientConfig))
        return -1;
    return indexOf(selected, PresetCatalogues::simpleGradientPresets());
}

int ScreenshotEditorViewModel::socialPresetIndex() const {
    return indexOf(m_config.selectedSocialPreset, PresetCatalogues::socialMediaPresets());
}

} // namespace framora
