#include "editor/model/ScreenshotStyleConfig.h"

namespace framora {

const ScreenshotStyleConfig& ScreenshotStyleConfig::shared() {
    static const ScreenshotStyleConfig config;
    return config;
}

SimpleGradientConfig ScreenshotStyleConfig::defaultGradient(const QList<SimpleGradientPreset>& catalogue) {
    return catalogue.isEmpty() ? SimpleGradientConfig::fallback() : catalogue.first().config;
}

std::optional<SimpleGradientPreset>
ScreenshotStyleConfig::defaultGradientPreset(const QList<SimpleGradientPreset>& catalogue) {
    if (catalogue.isEmpty())
        return std::nullopt;
    return catalogue.first();
}

} // namespace framora
