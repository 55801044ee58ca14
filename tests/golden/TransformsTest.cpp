#include "editor/render/HexColor.h"
#include "golden/GoldenComparison.h"

namespace framora::golden {
namespace {

class Transforms : public testing::Test {
protected:
    Transforms() {
        m_golden.style.padding = 24.0;
        m_golden.style.borderRadius = 12.0;
        m_golden.style.backgroundType = BackgroundType::gradient;
        m_golden.style.gradientConfig.color1 = parseHexColor(u"f0e0d0");
        m_golden.style.gradientConfig.color2 = parseHexColor(u"8090f0");
    }
    void expectMatch(const QString& name) { EXPECT_TRUE(matchesReference(m_golden, name)); }

    GoldenCase m_golden;
};

TEST_F(Transforms, Rotation) {
    for (const double degrees : {0.01, 7.0, 45.0, 90.0, 133.7, 180.0, 270.0, 360.0, -30.0, 720.5}) {
        m_golden.style.rotation = degrees;
        expectMatch(QStringLiteral("rotation-%1").arg(degrees));
    }
}

TEST_F(Transforms, ImageScale) {
    for (const double percent : {10.0, 33.0, 50.0, 87.5, 101.0, 150.0, 200.0}) {
        m_golden.style.imageScale = percent;
        expectMatch(QStringLiteral("image-scale-%1").arg(percent));
    }
}

TEST_F(Transforms, Scale) {
    for (const double factor : {0.1, 0.5, 0.73, 1.0, 1.31, 2.0, 3.0}) {
        m_golden.style.scale = factor;
        expectMatch(QStringLiteral("scale-%1").arg(factor));
    }
}

TEST_F(Transforms, Offset) {
    for (const Size offset : {Size{10, -5}, Size{-37.25, 12.6}, Size{80, 60}, Size{500, 0}}) {
        m_golden.style.screenshotOffset = offset;
        expectMatch(QStringLiteral("offset-%1-%2").arg(offset.width).arg(offset.height));
    }
}

TEST_F(Transforms, TiltAboutTheHorizontalAxis) {
    for (const double degrees : {1.0, 20.0, 45.0, 60.0, 80.0, -15.0, -45.0, -70.0}) {
        m_golden.style.rotationX = degrees;
        expectMatch(QStringLiteral("tilt-x-%1").arg(degrees));
    }
}

TEST_F(Transforms, TiltAboutTheVerticalAxis) {
    for (const double degrees : {1.0, 20.0, 45.0, 60.0, 80.0, -15.0, -45.0, -70.0}) {
        m_golden.style.rotationY = degrees;
        expectMatch(QStringLiteral("tilt-y-%1").arg(degrees));
    }
}

TEST_F(Transforms, BothTilts) {
    for (const auto& [x, y] :
         {std::pair(20.0, 30.0), std::pair(-25.0, 40.0), std::pair(50.0, -50.0), std::pair(-60.0, -20.0)}) {
        m_golden.style.rotationX = x;
        m_golden.style.rotationY = y;
        expectMatch(QStringLiteral("tilts-%1-%2").arg(x).arg(y));
    }
}

TEST_F(Transforms, TiltUntilAlmostNothingIsSeen) {
    // Near and far parts of the picture lie few pixels apart.
    m_golden.screenshot = SmoothPicture(900, 560, 1.0, 0.1);
    m_golden.style.padding = 0.0;
    for (const double degrees : {86.0, -88.0, 89.5}) {
        m_golden.style.rotationX = degrees;
        expectMatch(QStringLiteral("edge-on-%1").arg(degrees));
    }
}

TEST_F(Transforms, TheEyeStandsByTheLongerSideWithItsMockup) {
    m_golden.style.mockupStyle = MockupStyle::border;
    m_golden.style.mockupBorderSize = 8.0;
    m_golden.style.rotationX = 35.0;
    m_golden.style.rotationY = -25.0;
    for (const QSize size : {QSize(40, 110), QSize(110, 40)}) {
        m_golden.screenshot = SmoothPicture(size.width(), size.height(), 1.0, 0.1);
        expectMatch(QStringLiteral("eye-%1x%2").arg(size.width()).arg(size.height()));
    }
}

TEST_F(Transforms, TheEyeIsNotMovedByTheScales) {
    m_golden.style.rotationY = 40.0;
    m_golden.style.imageScale = 60.0;
    expectMatch("eye-image-scale");
    m_golden.style.imageScale = 100.0;
    m_golden.style.scale = 0.6;
    expectMatch("eye-scale");
}

TEST_F(Transforms, PerspectiveAloneDoesNothing) {
    m_golden.style.perspective = 1.0;
    expectMatch("perspective");
}

TEST_F(Transforms, AllAtOnce) {
    m_golden.style.mockupStyle = MockupStyle::border;
    m_golden.style.mockupBorderSize = 4.0;
    m_golden.style.rotation = 25.0;
    m_golden.style.imageScale = 80.0;
    m_golden.style.scale = 1.2;
    m_golden.style.rotationX = 30.0;
    m_golden.style.rotationY = -20.0;
    m_golden.style.screenshotOffset = {-8.0, 6.0};
    expectMatch("all");
}

TEST_F(Transforms, ASocialLayoutKeepsTheFrameOfItsContent) {
    m_golden.style.selectedSocialPreset = PresetCatalogues::socialMediaPresets()[4];
    expectMatch("social-cut");
    m_golden.style.backgroundType = BackgroundType::image;
    m_golden.style.rotation = 10.0;
    expectMatch("social-cut-turned");
}

TEST_F(Transforms, ASocialLayoutFitsWhatIsLargerThanItself) {
    m_golden.style.selectedSocialPreset = PresetCatalogues::socialMediaPresets()[13]; // 1584 x 396
    m_golden.style.padding = 200.0;
    m_golden.style.imageScale = 150.0;
    expectMatch("social-fit");
    // The frame is not counted in how large it may be.
    m_golden.style.mockupStyle = MockupStyle::border;
    m_golden.style.mockupBorderSize = 8.0;
    expectMatch("social-fit-framed");
}

} // namespace
} // namespace framora::golden
