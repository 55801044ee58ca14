#include "editor/views/CanvasViewport.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace framora {
namespace {

/// A room of 600 x 400 for a canvas of 300 x 200.
class Viewport : public testing::Test {
public:
    Viewport() {
        viewport.setRoom({600, 400});
        viewport.setCanvas({300, 200});
    }
    static double apart(QPointF a, QPointF b) { return std::hypot(a.x() - b.x(), a.y() - b.y()); }

    CanvasViewport viewport;
};

TEST_F(Viewport, PutsTheCanvasIntoTheMiddle) {
    EXPECT_EQ(viewport.canvasCentre(), QPointF(300, 200));
    viewport.setRoom({800, 500});
    EXPECT_EQ(viewport.canvasCentre(), QPointF(400, 250));
    EXPECT_EQ(viewport.toCanvas({400, 250}), QPointF(0, 0));
}

TEST_F(Viewport, WhatIsUnderThePointerStaysThereAtEveryZoom) {
    const QPointF pointer(370, 130);
    const QPointF point = viewport.toCanvas(pointer);
    for (const double factor : {1.2, 1.44, 2.0, 3.0, 2.5, 1.0, 0.6, 3.0}) {
        viewport.zoomAbout(pointer, factor);
        EXPECT_EQ(viewport.zoom(), factor);
        EXPECT_LT(apart(viewport.toCanvas(pointer), point), 1e-9) << factor;
    }
}

TEST_F(Viewport, TheMiddleOfTheRoomAlwaysShowsCanvas) {
    // Far beside the canvas: it would be driven out of sight.
    for (int i = 0; i < 20; ++i)
        viewport.zoomAbout({599, 399}, std::min(3.0, viewport.zoom() * 1.2));
    const QPointF off = viewport.canvasCentre() - QPointF(300, 200);
    EXPECT_LE(std::abs(off.x()), 450.0);
    EXPECT_LE(std::abs(off.y()), 300.0);
    EXPECT_EQ(off, QPointF(-450, -300)) << "up to its edge";
}

TEST_F(Viewport, AZoomByButtonKeepsTheMiddleAndCentresWhatFits) {
    viewport.setZoom(3);
    viewport.panBy({100, 60});
    const QPointF point = viewport.toCanvas({300, 200});
    viewport.setZoom(2.5);
    EXPECT_LT(apart(viewport.toCanvas({300, 200}), point), 1e-9);
    viewport.setZoom(1);
    EXPECT_EQ(viewport.canvasCentre(), QPointF(300, 200));
}

TEST_F(Viewport, PansWhatIsLargerThanTheRoomAndNothingElse) {
    EXPECT_FALSE(viewport.canPan());
    viewport.panBy({50, 50});
    EXPECT_EQ(viewport.canvasCentre(), QPointF(300, 200));
    viewport.setCanvas({700, 200});
    EXPECT_TRUE(viewport.canPan());
    viewport.panBy({30, 30});
    EXPECT_EQ(viewport.canvasCentre(), QPointF(330, 200)) << "sideways only";
    viewport.panBy({5000, 0});
    EXPECT_EQ(viewport.canvasCentre().x(), 300 + 50 + CanvasViewport::margin);
    viewport.panBy({-5000, 0});
    EXPECT_EQ(viewport.canvasCentre().x(), 300 - 50 - CanvasViewport::margin);
}

TEST_F(Viewport, WhatAZoomLedAsideComesBackByPanningAndNeverJumps) {
    viewport.zoomAbout({200, 120}, 1.5);
    const QPointF aside = viewport.canvasCentre();
    EXPECT_GT(aside.x(), 300);
    EXPECT_TRUE(viewport.canPan());
    viewport.panBy({10, 10});
    EXPECT_EQ(viewport.canvasCentre(), aside) << "no further";
    viewport.panBy({-1, -1});
    EXPECT_EQ(viewport.canvasCentre(), aside - QPointF(1, 1));
    viewport.centre();
    EXPECT_EQ(viewport.canvasCentre(), QPointF(300, 200));
    EXPECT_FALSE(viewport.canPan());
}

TEST_F(Viewport, AFactorThatIsNotPositiveChangesNothing) {
    for (const double factor : {0.0, -1.0, std::nan("")}) {
        viewport.setZoom(factor);
        viewport.zoomAbout({10, 10}, factor);
    }
    EXPECT_EQ(viewport.zoom(), 1.0);
    EXPECT_EQ(viewport.canvasCentre(), QPointF(300, 200));
}

} // namespace
} // namespace framora
