#include "editor/model/ScreenshotStyleConfig.h"

#include "editor/render/HexColor.h"

#include <QMetaProperty>
#include <functional>
#include <gtest/gtest.h>

namespace framora {
namespace {

TEST(ScreenshotStyleConfig, ANewOneHoldsTheDefaults) {
    const ScreenshotStyleConfig config;
    EXPECT_EQ(config.mockupStyle, MockupStyle::defaultStyle);
    EXPECT_TRUE(config.showMockup);
    EXPECT_EQ(config.mockupBorderSize, 3.0);
    EXPECT_EQ(config.borderColor, parseHexColor(u"2d2d2d"));
    EXPECT_EQ(config.borderStyle, BorderStyle::curved);
    EXPECT_EQ(config.borderRadius, 20.0);
    EXPECT_EQ(config.rotation, 0.0);
    EXPECT_EQ(config.imageScale, 100.0);
    EXPECT_EQ(config.screenshotOffset, (Size{0.0, 0.0}));
    EXPECT_EQ(config.rotationX, 0.0);
    EXPECT_EQ(config.rotationY, 0.0);
    EXPECT_EQ(config.perspective, 0.0);
    EXPECT_EQ(config.backgroundType, BackgroundType::image);
    EXPECT_FALSE(config.selectedMagicPreset);
    EXPECT_FALSE(config.selectedShadowScene);
    EXPECT_FALSE(config.selectedSolidColor);
    EXPECT_FALSE(config.selectedGradient);
    EXPECT_FALSE(config.backgroundImageURL);
    EXPECT_EQ(config.customColor, Color::white());
    EXPECT_EQ(config.backgroundNoise, 0.0);
    EXPECT_EQ(config.backgroundBlur, 0.0);
    EXPECT_EQ(config.shadowSceneMode, ShadowSceneMode::underlay);
    EXPECT_EQ(config.shadowSceneOpacity, 80.0);
    EXPECT_TRUE(config.textOverlays.isEmpty());
    EXPECT_FALSE(config.redactEnabled);
    EXPECT_EQ(config.redactStyle, RedactStyle::blur);
    EXPECT_TRUE(config.redactRegions.isEmpty());
    EXPECT_FALSE(config.selectedSocialPreset);
    EXPECT_EQ(config.padding, 80.0);
    EXPECT_EQ(config.zoom, 100.0);
    EXPECT_EQ(config.scale, 1.0);
}

TEST(ScreenshotStyleConfig, ItsGradientIsCinderAndSaysSo) {
    const ScreenshotStyleConfig config;
    const SimpleGradientPreset& cinder = PresetCatalogues::simpleGradientPresets().first();
    EXPECT_EQ(cinder.name, QStringLiteral("Cinder"));
    EXPECT_EQ(config.gradientConfig, cinder.config);
    EXPECT_EQ(config.selectedGradientPreset, cinder);
    EXPECT_EQ(config.gradientConfig.style, GradientStyle::linear);
    EXPECT_EQ(config.gradientConfig.angle, 135.0);
    EXPECT_FALSE(config.gradientConfig.useThreeColors);
}

TEST(ScreenshotStyleConfig, WithoutACatalogueItFallsBack) {
    const SimpleGradientConfig gradient = ScreenshotStyleConfig::defaultGradient({});
    const SimpleGradientConfig expected{GradientStyle::linear,
                                        parseHexColor(u"667eea"),
                                        parseHexColor(u"764ba2"),
                                        parseHexColor(u"f953c6"),
                                        true,
                                        135.0,
                                        0.0,
                                        0.0,
                                        100.0,
                                        100.0};
    EXPECT_EQ(gradient, expected);
    EXPECT_EQ(ScreenshotStyleConfig::defaultGradientPreset({}), std::nullopt);
}

TEST(ScreenshotStyleConfig, TwoNewOnesAreEqualAndTheSharedOneIsOne) {
    EXPECT_EQ(ScreenshotStyleConfig(), ScreenshotStyleConfig());
    EXPECT_EQ(ScreenshotStyleConfig::shared(), ScreenshotStyleConfig());
    EXPECT_EQ(&ScreenshotStyleConfig::shared(), &ScreenshotStyleConfig::shared());
}

TEST(ScreenshotStyleConfig, AnySingleFieldMakesItDiffer) {
    using Config = ScreenshotStyleConfig;
    const std::pair<const char*, std::function<void(Config&)>> changes[] = {
        {"mockupStyle", [](Config& c) { c.mockupStyle = MockupStyle::border; }},
        {"showMockup", [](Config& c) { c.showMockup = false; }},
        {"mockupBorderSize", [](Config& c) { c.mockupBorderSize = 3.5; }},
        {"borderColor", [](Config& c) { c.borderColor.alpha = 0.5; }},
        {"borderStyle", [](Config& c) { c.borderStyle = BorderStyle::round; }},
        {"borderRadius", [](Config& c) { c.borderRadius = 20.0 + 4e-15; }},
        {"rotation", [](Config& c) { c.rotation = 90.0; }},
        {"imageScale", [](Config& c) { c.imageScale = 99.0; }},
        {"screenshotOffset.width", [](Config& c) { c.screenshotOffset.width = 1e-13; }},
        {"screenshotOffset.height", [](Config& c) { c.screenshotOffset.height = -1e-13; }},
        {"rotationX", [](Config& c) { c.rotationX = 1.0; }},
        {"rotationY", [](Config& c) { c.rotationY = 1.0; }},
        {"perspective", [](Config& c) { c.perspective = 1.0; }},
        {"backgroundType", [](Config& c) { c.backgroundType = BackgroundType::color; }},
        {"selectedMagicPreset",
         [](Config& c) { c.selectedMagicPreset = PresetCatalogues::magicPresets().first(); }},
        {"selectedShadowScene", [](Config& c) { c.selectedShadowScene = ShadowScene{}; }},
        {"selectedSolidColor", [](Config& c) { c.selectedSolidColor = SolidColor{}; }},
        {"selectedGradient", [](Config& c) { c.selectedGradient = GradientPreset{}; }},
        {"backgroundImageURL", [](Config& c) { c.backgroundImageURL = QUrl::fromLocalFile("/a.png"); }},
        {"customColor", [](Config& c) { c.customColor.red = 0.0; }},
        {"gradientConfig", [](Config& c) { c.gradientConfig.noiseAmount = 1.0; }},
        {"selectedGradientPreset", [](Config& c) { c.selectedGradientPreset.reset(); }},
        {"backgroundNoise", [](Config& c) { c.backgroundNoise = 1.0; }},
        {"backgroundBlur", [](Config& c) { c.backgroundBlur = 1.0; }},
        {"shadowSceneMode", [](Config& c) { c.shadowSceneMode = ShadowSceneMode::overlay; }},
        {"shadowSceneOpacity", [](Config& c) { c.shadowSceneOpacity = 79.0; }},
        {"textOverlays", [](Config& c) { c.textOverlays.append(TextOverlay{}); }},
        {"redactEnabled", [](Config& c) { c.redactEnabled = true; }},
        {"redactStyle", [](Config& c) { c.redactStyle = RedactStyle::pixelate; }},
        {"redactRegions", [](Config& c) { c.redactRegions.append(RedactRegion{}); }},
        {"selectedSocialPreset",
         [](Config& c) { c.selectedSocialPreset = PresetCatalogues::socialMediaPresets().first(); }},
        {"padding", [](Config& c) { c.padding = 81.0; }},
        {"zoom", [](Config& c) { c.zoom = 50.0; }},
        {"scale", [](Config& c) { c.scale = 2.0; }},
    };
    for (const auto& [name, change] : changes) {
        ScreenshotStyleConfig changed;
        change(changed);
        EXPECT_NE(changed, ScreenshotStyleConfig()) << name;
        const ScreenshotStyleConfig copy = changed;
        EXPECT_EQ(copy, changed) << name;
    }
}

TEST(ScreenshotStyleConfig, APresetOfTheSameContentIsAnotherSelection) {
    ScreenshotStyleConfig first;
    ScreenshotStyleConfig second;
    first.selectedSolidColor = SolidColor{.color = Color::white()};
    second.selectedSolidColor = SolidColor{.color = Color::white()};
    EXPECT_NE(first, second);
}

TEST(ScreenshotStyleConfig, ACopyIsIndependent) {
    ScreenshotStyleConfig config;
    config.textOverlays.append(TextOverlay{.text = QStringLiteral("kept")});
    ScreenshotStyleConfig copy = config;
    copy.textOverlays[0].text = QStringLiteral("changed");
    EXPECT_EQ(config.textOverlays[0].text, QStringLiteral("kept"));
}

TEST(ScreenshotStyleConfig, EveryFieldIsReachedByItsNameInOrder) {
    const char* names[] = {"mockupStyle",
                           "showMockup",
                           "mockupBorderSize",
                           "borderColor",
                           "borderStyle",
                           "borderRadius",
                           "rotation",
                           "imageScale",
                           "screenshotOffset",
                           "rotationX",
                           "rotationY",
                           "perspective",
                           "backgroundType",
                           "selectedMagicPreset",
                           "selectedShadowScene",
                           "selectedSolidColor",
                           "selectedGradient",
                           "backgroundImageURL",
                           "customColor",
                           "gradientConfig",
                           "selectedGradientPreset",
                           "backgroundNoise",
                           "backgroundBlur",
                           "shadowSceneMode",
                           "shadowSceneOpacity",
                           "textOverlays",
                           "redactEnabled",
                           "redactStyle",
                           "redactRegions",
                           "selectedSocialPreset",
                           "padding",
                           "zoom",
                           "scale"};
    const QMetaObject& fields = ScreenshotStyleConfig::staticMetaObject;
    ASSERT_EQ(fields.propertyCount(), std::ssize(names));
    ScreenshotStyleConfig config;
    for (int i = 0; i < fields.propertyCount(); ++i) {
        EXPECT_STREQ(fields.property(i).name(), names[i]);
        EXPECT_TRUE(fields.property(i).readOnGadget(&config).isValid()) << names[i];
    }
    const QMetaProperty padding = fields.property(fields.indexOfProperty("padding"));
    EXPECT_TRUE(padding.writeOnGadget(&config, 12.5));
    EXPECT_EQ(config.padding, 12.5);
}

} // namespace
} // namespace framora
