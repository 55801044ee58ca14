#include "editor/model/SimpleGradientConfig.h"

#include "editor/render/HexColor.h"

namespace framora {

SimpleGradientConfig SimpleGradientConfig::fallback() {
    return {
        .style = GradientStyle::linear,
        .color1 = parseHexColor(u"667eea"),
        .color2 = parseHexColor(u"764ba2"),
        .color3 = parseHexColor(u"f953c6"),
        .useThreeColors = true,
        .angle = 135.0,
        .blurAmount = 0.0,
        .noiseAmount = 0.0,
        .saturation = 100.0,
        .brightness = 100.0,
    };
}

} // namespace framora
