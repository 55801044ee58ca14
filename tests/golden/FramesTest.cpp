#include "editor/render/HexColor.h"
#include "golden/GoldenComparison.h"

namespace framora::golden {
namespace {

class Frames : public testing::Test {
protected:
    Frames() {
        m_golden.style.padding = 16.0;
        m_golden.style.backgroundType = BackgroundType::color;
        m_golden.style.customColor = parseHexColor(u"f0f0e0");
    }
    void expectMatch(const QString& name) { EXPECT_TRUE(matchesReference(m_golden, name)); }

    GoldenCase m_golden;
};

TEST_F(Frames, NoneLeavesTheCornersSquare) {
    m_golden.style.showMockup = false;
    m_golden.style.mockupStyle = MockupStyle::border;
    expectMatch("none");
}

TEST_F(Frames, TheDefaultRoundsTheCorners) {
    for (const double radius : {0.0, 0.5, 3.0, 10.0, 20.0, 25.0, 30.0, 40.0, 1000.0, -5.0}) {
        m_golden.style.borderRadius = radius;
        expectMatch(QStringLiteral("default-%1").arg(radius));
    }
}

TEST_F(Frames, TheBorderStandsAroundIt) {
    m_golden.style.mockupStyle = MockupStyle::border;
    m_golden.style.borderColor = parseHexColor(u"2d2d2d");
    for (const double size : {0.5, 1.0, 3.0, 7.3, 10.0})
        for (const double radius : {0.0, 8.0, 20.0, 40.0}) {
            m_golden.style.mockupBorderSize = size;
            m_golden.style.borderRadius = radius;
            expectMatch(QStringLiteral("border-%1-%2").arg(size).arg(radius));
        }
}

TEST_F(Frames, ATranslucentBorderShowsTheBackground) {
    m_golden.style.mockupStyle = MockupStyle::border;
    m_golden.style.borderColor = parseHexColor(u"8000c040");
    expectMatch("border-translucent");
}

TEST_F(Frames, ATranslucentScreenshotShowsTheBorderBelowIt) {
    m_golden.style.mockupStyle = MockupStyle::border;
    m_golden.style.borderColor = parseHexColor(u"c02020");
    m_golden.screenshot = SmoothPicture(90, 60, 1.0, 0.3, true);
    expectMatch("border-under-translucent");
}

TEST_F(Frames, ATallAndANarrowScreenshot) {
    for (const QSize size : {QSize(20, 150), QSize(150, 20), QSize(12, 12)}) {
        m_golden.screenshot = SmoothPicture(size.width(), size.height(), 1.0, 0.8);
        expectMatch(QStringLiteral("shape-%1x%2").arg(size.width()).arg(size.height()));
    }
}

TEST_F(Frames, TheSizeComesFromThePointsAndNotFromThePixels) {
    for (const double ratio : {0.5, 1.25, 1.5, 2.0, 3.0}) {
        m_golden.screenshot = SmoothPicture(120, 90, ratio, 0.8);
        expectMatch(QStringLiteral("ratio-%1").arg(ratio));
    }
}

} // namespace
} // namespace framora::golden
