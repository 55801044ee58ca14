#include "LayerProfile.h"

#include <memory>

namespace framora::comparison {
namespace {

Contender drawing(const QString& name, const Composition& drawn) {
    const auto target = std::make_shared<QImage>();
    return {.name = name,
            .run = [target, drawn] { CompositionRasterizer().drawInto(*target, drawn, exportViewport()); }};
}

} // namespace

QList<Contender> layerProfile(Workload workload, const Inputs& inputs) {
    const Composition whole = composition(workload, inputs);
    QList<Contender> contenders{drawing(QStringLiteral("whole"), whole)};
    Composition bare = whole;
    const auto without = [&](const char* what, auto change) {
        Composition changed = whole;
        change(changed.config);
        change(bare.config);
        contenders << drawing(QStringLiteral("without ") + QLatin1String(what), changed);
    };
    without("the background",
            [](ScreenshotStyleConfig& config) { config.backgroundType = BackgroundType::transparent; });
    // Far outside of what is drawn.
    without("the screenshot", [](ScreenshotStyleConfig& config) { config.screenshotOffset = {1e5, 1e5}; });
    if (whole.config.gradientConfig.blurAmount > 0)
        without("the blur", [](ScreenshotStyleConfig& config) { config.gradientConfig.blurAmount = 0; });
    if (whole.config.mockupStyle != MockupStyle::defaultStyle)
        without("the frame",
                [](ScreenshotStyleConfig& config) { config.mockupStyle = MockupStyle::defaultStyle; });
    if (whole.config.selectedShadowScene)
        without("the shadow scene",
                [](ScreenshotStyleConfig& config) { config.selectedShadowScene.reset(); });
    if (!whole.config.textOverlays.isEmpty())
        without("the text", [](ScreenshotStyleConfig& config) { config.textOverlays.clear(); });
    contenders << drawing(QStringLiteral("without any of them: clearing the target"), bare);
    return contenders;
}

} // namespace framora::comparison
