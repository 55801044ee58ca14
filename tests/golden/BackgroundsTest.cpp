#include "editor/render/HexColor.h"
#include "golden/GoldenComparison.h"

namespace framora::golden {
namespace {

class Backgrounds : public testing::Test {
protected:
    Backgrounds() {
        m_golden.style.padding = 20.0;
        m_golden.style.borderRadius = 8.0;
        SimpleGradientConfig& gradient = m_golden.style.gradientConfig;
        gradient.color1 = parseHexColor(u"ff8800");
        gradient.color2 = parseHexColor(u"2040c0");
        gradient.color3 = parseHexColor(u"e0ffe0");
    }
    void expectMatch(const QString& name) { EXPECT_TRUE(matchesReference(m_golden, name)); }

    GoldenCase m_golden;
};

TEST_F(Backgrounds, Transparent) {
    m_golden.style.backgroundType = BackgroundType::transparent;
    expectMatch("transparent");
}

TEST_F(Backgrounds, TransparentUnderATranslucentScreenshot) {
    m_golden.style.backgroundType = BackgroundType::transparent;
    m_golden.screenshot = SmoothPicture(90, 60, 1.0, 0.3, true);
    expectMatch("transparent-translucent");
}

TEST_F(Backgrounds, Colours) {
    m_golden.style.backgroundType = BackgroundType::color;
    m_golden.style.customColor = parseHexColor(u"3366cc");
    expectMatch("custom-colour");
    m_golden.style.customColor = parseHexColor(u"803366cc");
    expectMatch("translucent-colour");
    m_golden.style.selectedSolidColor = SolidColor{.color = parseHexColor(u"cc6633")};
    expectMatch("solid-colour");
}

TEST_F(Backgrounds, AMagicPreset) {
    m_golden.style.backgroundType = BackgroundType::color;
    m_golden.style.customColor = Color::clear();
    m_golden.style.selectedMagicPreset = PresetCatalogues::magicPresets()[3];
    expectMatch("magic-preset");
}

TEST_F(Backgrounds, APresetGradient) {
    m_golden.style.backgroundType = BackgroundType::color;
    m_golden.style.selectedGradient =
        GradientPreset{.colors = {parseHexColor(u"ff0000"), parseHexColor(u"00ff00"),
                                  parseHexColor(u"0000ff"), parseHexColor(u"ffffff")},
                       .angle = 60.0};
    expectMatch("preset-gradient");
}

TEST_F(Backgrounds, LinearGradientsAtEveryAngle) {
    m_golden.style.backgroundType = BackgroundType::gradient;
    for (const double angle : {0.0, 30.0, 90.0, 135.0, 180.0, 225.5, 270.0, 360.0, -45.0})
        for (const bool three : {false, true}) {
            m_golden.style.gradientConfig.angle = angle;
            m_golden.style.gradientConfig.useThreeColors = three;
            expectMatch(QStringLiteral("linear-%1-%2").arg(angle).arg(three ? 3 : 2));
        }
}

TEST_F(Backgrounds, RadialGradients) {
    m_golden.style.backgroundType = BackgroundType::gradient;
    m_golden.style.gradientConfig.style = GradientStyle::radial;
    for (const bool three : {false, true}) {
        m_golden.style.gradientConfig.useThreeColors = three;
        expectMatch(QStringLiteral("radial-%1").arg(three ? 3 : 2));
    }
}

TEST_F(Backgrounds, AngularGradientsAtSomeAngles) {
    m_golden.style.backgroundType = BackgroundType::gradient;
    m_golden.style.gradientConfig.style = GradientStyle::angular;
    m_golden.style.imageScale = 30.0; // shows the middle
    for (const double angle : {0.0, 75.0, 135.0, 300.0})
        for (const bool three : {false, true}) {
            m_golden.style.gradientConfig.angle = angle;
            m_golden.style.gradientConfig.useThreeColors = three;
            m_golden.style.screenshotOffset = {30.0, 20.0};
            expectMatch(QStringLiteral("angular-%1-%2").arg(angle).arg(three ? 3 : 2));
        }
}

TEST_F(Backgrounds, TranslucentGradients) {
    m_golden.style.backgroundType = BackgroundType::gradient;
    m_golden.style.gradientConfig.color1 = parseHexColor(u"40ff8800");
    for (const GradientStyle style : allCases<GradientStyle>()) {
        m_golden.style.gradientConfig.style = style;
        expectMatch(QStringLiteral("translucent-") + rawValue(style));
    }
}

TEST_F(Backgrounds, SaturationAndBrightness) {
    for (const BackgroundType type : {BackgroundType::gradient, BackgroundType::color})
        for (const auto& [saturation, brightness] :
             {std::pair(0.0, 100.0), std::pair(50.0, 120.0), std::pair(200.0, 100.0), std::pair(150.0, 70.0),
              std::pair(100.0, 0.0), std::pair(100.0, 200.0)}) {
            m_golden.style.backgroundType = type;
            m_golden.style.customColor = parseHexColor(u"b06030");
            m_golden.style.gradientConfig.saturation = saturation;
            m_golden.style.gradientConfig.brightness = brightness;
            expectMatch(
                QStringLiteral("adjusted-%1-%2-%3").arg(rawValue(type)).arg(saturation).arg(brightness));
        }
}

TEST_F(Backgrounds, AnImageIsStretched) {
    m_golden.style.backgroundType = BackgroundType::image;
    expectMatch("image-smaller");
    m_golden.background = SmoothPicture(40, 300, 1.0, 2.2);
    expectMatch("image-of-another-shape");
    m_golden.background = SmoothPicture(900, 700, 2.0, 2.9);
    expectMatch("image-larger");
    m_golden.background = SmoothPicture(100, 80, 1.0, 2.2, true);
    expectMatch("image-translucent");
}

TEST_F(Backgrounds, AnImageIsNeitherSaturatedNorBrightened) {
    m_golden.style.backgroundType = BackgroundType::image;
    m_golden.style.gradientConfig.saturation = 0.0;
    m_golden.style.gradientConfig.brightness = 150.0;
    expectMatch("image-unadjusted");
}

TEST_F(Backgrounds, WithoutItsImageNothingIsThere) {
    m_golden.style.backgroundType = BackgroundType::image;
    m_golden.background.reset();
    expectMatch("image-absent");
}

} // namespace
} // namespace framora::golden
