#include "editor/render/HexColor.h"
#include "golden/GoldenComparison.h"

namespace framora::golden {
namespace {

class Scenes : public testing::TestWithParam<ShadowSceneMode> {
protected:
    Scenes() {
        ScreenshotStyleConfig& style = m_golden.style;
        style.padding = 24.0;
        style.backgroundType = BackgroundType::gradient;
        style.gradientConfig.color1 = parseHexColor(u"ff8800");
        style.gradientConfig.color2 = parseHexColor(u"2040c0");
        style.shadowSceneMode = GetParam();
        style.selectedShadowScene = ShadowScene{
            .name = {},
            .colors = {parseHexColor(u"ff0000"), parseHexColor(u"80ffffff"), parseHexColor(u"001030")},
            .isTexture = false};
        m_name = GetParam() == ShadowSceneMode::overlay ? QStringLiteral("scene-over")
                                                        : QStringLiteral("scene-under");
    }
    void expectMatch(const QString& name) { EXPECT_TRUE(matchesReference(m_golden, m_name + name)); }

    GoldenCase m_golden;
    QString m_name;
};

TEST_P(Scenes, AtEveryOpacity) {
    for (const double opacity : {0.0, 3.0, 50.0, 80.0, 100.0}) {
        m_golden.style.shadowSceneOpacity = opacity;
        expectMatch(QStringLiteral("-%1").arg(opacity));
    }
}

TEST_P(Scenes, WithOneColourAndWithNone) {
    m_golden.style.selectedShadowScene->colors = {parseHexColor(u"20c040")};
    expectMatch(QStringLiteral("-one"));
    m_golden.style.selectedShadowScene->colors = {};
    expectMatch(QStringLiteral("-none"));
}

TEST_P(Scenes, OnEveryBackground) {
    for (const BackgroundType background : allCases<BackgroundType>()) {
        m_golden.style.backgroundType = background;
        m_golden.style.customColor = parseHexColor(u"60ff4080");
        expectMatch(QStringLiteral("-%1").arg(int(background)));
    }
}

TEST_P(Scenes, OnNarrowAndScaledCanvases) {
    for (const QSize size : {QSize(20, 150), QSize(150, 20), QSize(13, 11)}) {
        m_golden.screenshot = SmoothPicture(size.width(), size.height(), 1.0, 0.8);
        expectMatch(QStringLiteral("-%1x%2").arg(size.width()).arg(size.height()));
    }
    m_golden.style.scale = 0.37;
    expectMatch(QStringLiteral("-scaled"));
    m_golden.style.rotation = 33.0;
    m_golden.style.rotationX = 40.0;
    expectMatch(QStringLiteral("-tilted"));
}

INSTANTIATE_TEST_SUITE_P(Golden, Scenes,
                         testing::Values(ShadowSceneMode::underlay, ShadowSceneMode::overlay));

} // namespace
} // namespace framora::golden
