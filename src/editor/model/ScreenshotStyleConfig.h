#pragma once

#include "editor/model/Color.h"
#include "editor/model/Geometry.h"
#include "editor/model/PresetCatalogues.h"
#include "editor/model/RedactRegion.h"
#include "editor/model/SimpleGradientConfig.h"
#include "editor/model/StyleEnums.h"
#include "editor/model/TextOverlay.h"

#include <QList>
#include <QUrl>
#include <optional>

namespace framora {

/// How one screenshot is presented. A plain value; lengths are points, angles degrees. It clamps nothing: who
/// writes a field keeps the rules that tie fields together. A new
/// one holds the defaults; copying `shared()` does the same without building them again.
struct ScreenshotStyleConfig {
    Q_GADGET
    Q_PROPERTY(framora::MockupStyle mockupStyle MEMBER mockupStyle)
    Q_PROPERTY(bool showMockup MEMBER showMockup)
    Q_PROPERTY(double mockupBorderSize MEMBER mockupBorderSize)
    Q_PROPERTY(framora::Color borderColor MEMBER borderColor)
    Q_PROPERTY(framora::BorderStyle borderStyle MEMBER borderStyle)
    Q_PROPERTY(double borderRadius MEMBER borderRadius)
    Q_PROPERTY(double rotation MEMBER rotation)
    Q_PROPERTY(double imageScale MEMBER imageScale)
    Q_PROPERTY(framora::Size screenshotOffset MEMBER screenshotOffset)
    Q_PROPERTY(double rotationX MEMBER rotationX)
    Q_PROPERTY(double rotationY MEMBER rotationY)
    Q_PROPERTY(double perspective MEMBER perspective)
    Q_PROPERTY(framora::BackgroundType backgroundType MEMBER backgroundType)
    Q_PROPERTY(std::optional<framora::MagicPreset> selectedMagicPreset MEMBER selectedMagicPreset)
    Q_PROPERTY(std::optional<framora::ShadowScene> selectedShadowScene MEMBER selectedShadowScene)
    Q_PROPERTY(std::optional<framora::SolidColor> selectedSolidColor MEMBER selectedSolidColor)
    Q_PROPERTY(std::optional<framora::GradientPreset> selectedGradient MEMBER selectedGradient)
    Q_PROPERTY(std::optional<QUrl> backgroundImageURL MEMBER backgroundImageURL)
    Q_PROPERTY(framora::Color customColor MEMBER customColor)
    Q_PROPERTY(framora::SimpleGradientConfig gradientConfig MEMBER gradientConfig)
    Q_PROPERTY(
        std::optional<framora::SimpleGradientPreset> selectedGradientPreset MEMBER selectedGradientPreset)
    Q_PROPERTY(double backgroundNoise MEMBER backgroundNoise)
    Q_PROPERTY(double backgroundBlur MEMBER backgroundBlur)
    Q_PROPERTY(framora::ShadowSceneMode shadowSceneMode MEMBER shadowSceneMode)
    Q_PROPERTY(double shadowSceneOpacity MEMBER shadowSceneOpacity)
    Q_PROPERTY(QList<framora::TextOverlay> textOverlays MEMBER textOverlays)
    Q_PROPERTY(bool redactEnabled MEMBER redactEnabled)
    Q_PROPERTY(framora::RedactStyle redactStyle MEMBER redactStyle)
    Q_PROPERTY(QList<framora::RedactRegion> redactRegions MEMBER redactRegions)
    Q_PROPERTY(std::optional<framora::SocialMediaPreset> selectedSocialPreset MEMBER selectedSocialPreset)
    Q_PROPERTY(double padding MEMBER padding)
    Q_PROPERTY(double zoom MEMBER zoom)
    Q_PROPERTY(double scale MEMBER scale)
public:
    MockupStyle mockupStyle = MockupStyle::defaultStyle;
    bool showMockup = true;
    double mockupBorderSize = 3.0; ///< thickness of the `border` frame
    Color borderColor = {45.0 / 255.0, 45.0 / 255.0, 45.0 / 255.0, 1.0};
    BorderStyle borderStyle = BorderStyle::curved;
    double borderRadius = 20.0;
    double rotation = 0.0;
    double imageScale = 100.0;  ///< percent
    Size screenshotOffset = {}; ///< from the canvas centre
    double rotationX = 0.0;     ///< tilt about the horizontal axis
    double rotationY = 0.0;     ///< tilt about the vertical axis
    double perspective = 0.0;
    BackgroundType backgroundType = BackgroundType::image;
    std::optional<MagicPreset> selectedMagicPreset = std::nullopt;
    std::optional<ShadowScene> selectedShadowScene = std::nullopt;
    std::optional<SolidColor> selectedSolidColor = std::nullopt;
    std::optional<GradientPreset> selectedGradient = std::nullopt;
    std::optional<QUrl> backgroundImageURL = std::nullopt;
    Color customColor = Color::white();
    SimpleGradientConfig gradientConfig = defaultGradient();
    std::optional<SimpleGradientPreset> selectedGradientPreset = defaultGradientPreset();
    double backgroundNoise = 0.0;
    double backgroundBlur = 0.0;
    ShadowSceneMode shadowSceneMode = ShadowSceneMode::underlay;
    double shadowSceneOpacity = 80.0; ///< percent
    QList<TextOverlay> textOverlays = {};
    bool redactEnabled = false;
    RedactStyle redactStyle = RedactStyle::blur; ///< of new regions
    QList<RedactRegion> redactRegions = {};
    std::optional<SocialMediaPreset> selectedSocialPreset =
        std::nullopt; ///< none: the size follows the content
    double padding = 80.0;
    double zoom = 100.0; ///< percent; the preview's only
    double scale = 1.0;  ///< factor

    /// The one default configuration, built on first use; copy it.
    static const ScreenshotStyleConfig& shared();

    bool operator==(const ScreenshotStyleConfig&) const = default;

    /// The first entry of `catalogue`: its gradient, or the fallback and no selection when there is none.
    static SimpleGradientConfig
    defaultGradient(const QList<SimpleGradientPreset>& catalogue = PresetCatalogues::simpleGradientPresets());
    static std::optional<SimpleGradientPreset> defaultGradientPreset(
        const QList<SimpleGradientPreset>& catalogue = PresetCatalogues::simpleGradientPresets());
};

} // namespace framora
