#include "golden/GoldenComparison.h"

#include <random>

namespace framora::golden {
namespace {

/// Draws styles from a seed, the same on every machine.
class StyleDice {
public:
    explicit StyleDice(unsigned seed) : m_engine(seed) {}

    double between(double low, double high) { return low + (high - low) * double(m_engine()) / 4294967295.0; }
    bool chance(double share) { return between(0.0, 1.0) < share; }
    int upTo(int count) { return int(m_engine() % unsigned(count)); }
    template <class E> E any() { return allCases<E>()[std::size_t(upTo(int(allCases<E>().size())))]; }
    Color color() {
        const double alpha = chance(0.2) ? between(0.2, 1.0) : 1.0;
        return {between(0, 1), between(0, 1), between(0, 1), alpha};
    }

    GoldenCase golden() {
        GoldenCase golden;
        golden.screenshot =
            SmoothPicture(60 + upTo(100), 40 + upTo(80), std::array{1.0, 1.0, 1.5, 2.0}[m_engine() % 4],
                          between(0, 6), chance(0.2));
        golden.background = SmoothPicture(40 + upTo(300), 40 + upTo(300), 1.0, between(0, 6), chance(0.2));
        ScreenshotStyleConfig& style = golden.style;
        style.backgroundType = any<BackgroundType>();
        style.showMockup = chance(0.8);
        style.mockupStyle = chance(0.5) ? MockupStyle::border : MockupStyle::defaultStyle;
        style.mockupBorderSize = between(0.5, 8.0);
        style.borderColor = color();
        style.borderRadius = between(0.0, 40.0);
        style.customColor = color();
        style.gradientConfig.style = any<GradientStyle>();
        style.gradientConfig.color1 = color();
        style.gradientConfig.color2 = color();
        style.gradientConfig.color3 = color();
        style.gradientConfig.useThreeColors = chance(0.5);
        style.gradientConfig.angle = between(0.0, 360.0);
        if (chance(0.4)) {
            style.gradientConfig.saturation = between(0.0, 200.0);
            style.gradientConfig.brightness = between(0.0, 200.0);
        }
        style.padding = between(0.0, 40.0);
        if (chance(0.5))
            style.rotation = between(-180.0, 180.0);
        if (chance(0.4))
            style.imageScale = between(30.0, 160.0);
        if (chance(0.4))
            style.scale = between(0.4, 1.6);
        if (chance(0.4))
            style.rotationX = between(-70.0, 70.0);
        if (chance(0.4))
            style.rotationY = between(-70.0, 70.0);
        if (chance(0.4))
            style.screenshotOffset = {between(-30.0, 30.0), between(-30.0, 30.0)};
        if (chance(0.15))
            style.selectedSocialPreset = PresetCatalogues::socialMediaPresets()[upTo(18)];
        if (chance(0.4))
            style.gradientConfig.blurAmount = between(style.selectedSocialPreset ? 20.0 : 1.5, 50.0);
        if (chance(0.35))
            setScene(style);
        return golden;
    }

private:
    void setScene(ScreenshotStyleConfig& style) {
        ShadowScene scene;
        for (int count = upTo(4); count > 0; --count)
            scene.colors.append(color());
        style.selectedShadowScene = scene;
        style.shadowSceneMode = chance(0.5) ? ShadowSceneMode::overlay : ShadowSceneMode::underlay;
        style.shadowSceneOpacity = between(5.0, 100.0);
    }

    std::mt19937 m_engine;
};

constexpr unsigned seedsInCase = 10;
/// Each case holds so many styles, from its own first seed on.
class RandomStyles : public testing::TestWithParam<unsigned> {};

TEST_P(RandomStyles, MatchTheReference) {
    for (unsigned i = 0; i < seedsInCase; ++i) {
        const unsigned seed = GetParam() * seedsInCase + i;
        EXPECT_TRUE(matchesReference(StyleDice(seed).golden(), QStringLiteral("random-%1").arg(seed)));
    }
}

INSTANTIATE_TEST_SUITE_P(Golden, RandomStyles, testing::Range(0u, 30u));

} // namespace
} // namespace framora::golden
