#include "unit/editor/PreviewCanvasFixture.h"

#include <QPointingDevice>

namespace framora {
namespace {

TEST_F(Canvas, ADragEndsWithTheNewOffsetOnce) {
    set([](auto& style) { style.screenshotOffset = {5, 5}; });
    QSignalSpy dragging(canvas, &ScreenshotPreviewCanvas::isDraggingChanged);
    QTest::mousePress(&window, Qt::LeftButton, {}, {300, 200});
    EXPECT_TRUE(canvas->isDragging());
    QTest::mouseMove(&window, {320, 195});
    EXPECT_EQ(canvas->dragOffset(), QSizeF(20, -5));
    QTest::mouseMove(&window, {330, 190});
    EXPECT_TRUE(offsets.isEmpty()) << "only at the end";
    EXPECT_EQ(canvas->config().screenshotOffset, (Size{5, 5})) << "the canvas never writes it";
    QTest::mouseRelease(&window, Qt::LeftButton, {}, {330, 190});
    EXPECT_EQ(offsets, QList<QSizeF>{QSizeF(35, -5)});
    EXPECT_EQ(canvas->dragOffset(), QSizeF(0, 0));
    EXPECT_FALSE(canvas->isDragging());
    EXPECT_EQ(dragging.count(), 2);
}

TEST_F(Canvas, AClickReportsTheUnchangedOffset) {
    set([](auto& style) { style.screenshotOffset = {5, 6}; });
    QTest::mouseClick(&window, Qt::LeftButton, {}, {300, 200});
    EXPECT_EQ(offsets, QList<QSizeF>{QSizeF(5, 6)});
    EXPECT_FALSE(canvas->isDragging());
}

TEST_F(Canvas, ADragCountsInCanvasPointsAtAnyZoom) {
    set([](auto& style) { style.zoom = 50; });
    QTest::mousePress(&window, Qt::LeftButton, {}, {300, 200});
    QTest::mouseMove(&window, {320, 190});
    QTest::mouseRelease(&window, Qt::LeftButton, {}, {320, 190});
    EXPECT_EQ(offsets, QList<QSizeF>{QSizeF(40, -20)});
}

TEST_F(Canvas, APressBesideTheScreenshotDragsNothing) {
    QTest::mouseClick(&window, Qt::LeftButton, {}, {180, 200});
    EXPECT_TRUE(offsets.isEmpty()) << "20 points left of it, on the background";
    QTest::mouseClick(&window, Qt::LeftButton, {}, {205, 200});
    EXPECT_EQ(offsets.size(), 1);
}

TEST_F(Canvas, TheScreenshotIsFoundWhereItWasTurnedTo) {
    set([](auto& style) { style.rotation = 90; });
    QTest::mouseClick(&window, Qt::LeftButton, {}, {205, 200});
    EXPECT_TRUE(offsets.isEmpty());
    QTest::mouseClick(&window, Qt::LeftButton, {}, {300, 110});
    EXPECT_EQ(offsets.size(), 1);
}

TEST_F(Canvas, BeyondTheHorizonOfATiltThereIsNoScreenshot) {
    // Its top lies 100 points above the middle, the horizon 115, and what is behind the eye would lie from
    // 136 on.
    set([](auto& style) {
        style.rotationX = 60;
        style.scale = 3;
        style.imageScale = 1000;
    });
    const QColor red(200, 30, 40);
    EXPECT_NE(shown(300, 96), red);
    EXPECT_EQ(shown(300, 104), red);
    for (int y = 2; y < 96; y += 5)
        QTest::mouseClick(&window, Qt::LeftButton, {}, {300, y});
    EXPECT_TRUE(offsets.isEmpty());
    QTest::mouseClick(&window, Qt::LeftButton, {}, {300, 104});
    EXPECT_EQ(offsets.size(), 1);
}

TEST_F(Canvas, TheScreenshotFollowsThePointerWhileItIsDragged) {
    const QColor red(200, 30, 40);
    EXPECT_EQ(shown(395, 200), red);
    EXPECT_NE(shown(405, 200), red);
    QTest::mousePress(&window, Qt::LeftButton, {}, {300, 200});
    QTest::mouseMove(&window, {320, 200});
    EXPECT_EQ(shown(405, 200), red);
    EXPECT_NE(shown(215, 200), red);
    QTest::mouseRelease(&window, Qt::LeftButton, {}, {320, 200});
    EXPECT_EQ(shown(405, 200), red) << "and stays where it was let go";
}

/// Operates the canvas with wheel, middle button, fingers and keys.
class CanvasHands : public Canvas {
public:
    void wheel(QPointF at, int vertical, Qt::KeyboardModifiers modifiers = {}, int horizontal = 0) {
        QWheelEvent event(at, window.mapToGlobal(at), {}, {horizontal, vertical}, Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&window, &event);
    }
    void scroll(QPointF at, QPoint pixels, Qt::ScrollPhase phase, Qt::KeyboardModifiers modifiers = {}) {
        QWheelEvent event(at, window.mapToGlobal(at), pixels, pixels * 3, Qt::NoButton, modifiers, phase,
                          false);
        QCoreApplication::sendEvent(&window, &event);
    }
    void zoom(double percent) {
        set([&](auto& style) { style.zoom = percent; });
    }
    QPointF centre() const { return canvas->viewport().canvasCentre(); }
    QPointF pointAt(QPointF position) const { return canvas->viewport().toCanvas(position); }
    static double apart(QPointF a, QPointF b) { return std::hypot(a.x() - b.x(), a.y() - b.y()); }
};

TEST_F(CanvasHands, TheWheelZoomsAboutThePointer) {
    // On the screenshot's right edge, above its middle.
    const QPointF pointer(400, 180);
    EXPECT_EQ(pointAt(pointer), QPointF(100, -20));
    wheel(pointer, 120);
    EXPECT_NEAR(config.zoom, 120, 1e-9) << "a notch is as a press of the button";
    for (int i = 0; i < 3; ++i) {
        wheel(pointer, 120);
        EXPECT_LT(apart(pointAt(pointer), {100, -20}), 1e-9);
    }
    const QColor red(200, 30, 40);
    EXPECT_EQ(shown(397, 180), red);
    EXPECT_NE(shown(403, 180), red);
    for (int i = 0; i < 8; ++i)
        wheel(pointer, -120);
    EXPECT_LT(config.zoom, 60);
    EXPECT_LT(apart(pointAt(pointer), {100, -20}), 1e-9);
}

TEST_F(CanvasHands, TheWheelStopsAtTheLimitsOfTheZoom) {
    for (int i = 0; i < 20; ++i)
        wheel({300, 200}, 240);
    EXPECT_EQ(config.zoom, 300);
    for (int i = 0; i < 30; ++i)
        wheel({300, 200}, -240);
    EXPECT_EQ(config.zoom, 10);
}

TEST_F(CanvasHands, AFineWheelZoomsInPartsOfANotch) {
    for (int i = 0; i < 8; ++i)
        wheel({300, 200}, 15, i % 2 ? Qt::ControlModifier : Qt::NoModifier);
    EXPECT_NEAR(config.zoom, 120, 1e-9);
}

TEST_F(CanvasHands, ShiftAndASidewaysWheelPanSideways) {
    zoom(300);
    wheel({300, 200}, 120, Qt::ShiftModifier);
    EXPECT_EQ(centre(), QPointF(348, 200));
    wheel({300, 200}, 0, {}, -240);
    EXPECT_EQ(centre(), QPointF(252, 200));
    EXPECT_EQ(config.zoom, 300);
}

TEST_F(CanvasHands, TwoFingersOnATouchpadPanAndWithControlZoom) {
    zoom(300);
    scroll({300, 200}, {-20, 30}, Qt::ScrollUpdate);
    EXPECT_EQ(centre(), QPointF(280, 230));
    EXPECT_EQ(config.zoom, 300);
    scroll({300, 200}, {0, -30}, Qt::ScrollUpdate, Qt::ControlModifier);
    EXPECT_LT(config.zoom, 300);
    // A wheel that counts in pixels is still a wheel.
    zoom(100);
    scroll({300, 200}, {0, 40}, Qt::NoScrollPhase);
    EXPECT_NEAR(config.zoom, 120, 1e-9);
}

TEST_F(CanvasHands, APinchOnATouchpadZoomsAboutThePointer) {
    QPointF pointer(380, 160);
    const QPointF point = pointAt(pointer);
    for (const double by : {0.1, 0.1, -0.05}) {
        QNativeGestureEvent event(Qt::ZoomNativeGesture, QPointingDevice::primaryPointingDevice(), 2, pointer,
                                  pointer, window.mapToGlobal(pointer), by, {});
        QCoreApplication::sendEvent(&window, &event);
    }
    EXPECT_NEAR(config.zoom, 100 * 1.1 * 1.1 * 0.95, 1e-9);
    EXPECT_LT(apart(pointAt(pointer), point), 1e-9);
}

TEST_F(CanvasHands, FingersOnAScreenDragPinchAndPan) {
    QPointingDevice* screen = QTest::createTouchDevice();
    // Moves of fingers come with the next frame.
    const auto arrives = [](auto condition) { return QTest::qWaitFor(condition, 5000); };
    QTest::touchEvent(&window, screen).press(0, QPoint(300, 200));
    QTest::touchEvent(&window, screen).move(0, QPoint(330, 190));
    EXPECT_TRUE(arrives([&] { return canvas->dragOffset() == QSizeF(30, -10); }));
    QTest::touchEvent(&window, screen).release(0, QPoint(330, 190));
    EXPECT_TRUE(arrives([&] { return offsets == QList<QSizeF>{QSizeF(30, -10)}; }));

    QTest::touchEvent(&window, screen).press(0, QPoint(250, 200));
    QTest::touchEvent(&window, screen).move(0, QPoint(250, 200)).press(1, QPoint(350, 200));
    EXPECT_TRUE(arrives([&] { return !canvas->isDragging(); })) << "the second finger takes the drag back";
    const QPointF point = pointAt({300, 200});
    QTest::touchEvent(&window, screen).move(0, QPoint(200, 200)).move(1, QPoint(400, 200));
    EXPECT_TRUE(arrives([&] { return std::abs(config.zoom - 200) < 1e-6; })) << config.zoom;
    EXPECT_LT(apart(pointAt({300, 200}), point), 1e-6);
    QTest::touchEvent(&window, screen).move(0, QPoint(200, 200)).release(1, QPoint(400, 200));
    QTest::touchEvent(&window, screen).move(0, QPoint(100, 200));
    QTest::touchEvent(&window, screen).release(0, QPoint(100, 200));
    QTest::qWait(50);
    EXPECT_EQ(offsets.size(), 1) << "the finger that stays moves nothing";
    EXPECT_NEAR(config.zoom, 200, 1e-6);
}

TEST_F(CanvasHands, TheMiddleButtonPansWhatIsLargerThanTheView) {
    QTest::mousePress(&window, Qt::MiddleButton, {}, {300, 200});
    QTest::mouseMove(&window, {320, 220});
    QTest::mouseRelease(&window, Qt::MiddleButton, {}, {320, 220});
    EXPECT_EQ(centre(), QPointF(300, 200)) << "it fits";
    zoom(300);
    QTest::mousePress(&window, Qt::MiddleButton, {}, {300, 200});
    EXPECT_EQ(canvas->cursor().shape(), Qt::ClosedHandCursor);
    QTest::mouseMove(&window, {320, 220});
    QTest::mouseMove(&window, {340, 230});
    EXPECT_EQ(centre(), QPointF(340, 230));
    QTest::mouseRelease(&window, Qt::MiddleButton, {}, {345, 235});
    EXPECT_EQ(centre(), QPointF(345, 235));
    QTest::mouseMove(&window, {400, 300});
    EXPECT_EQ(centre(), QPointF(345, 235));
    EXPECT_TRUE(offsets.isEmpty());
    EXPECT_EQ(canvas->cursor().shape(), Qt::OpenHandCursor) << "over the screenshot";
}

TEST_F(CanvasHands, ThePanKeyTurnsTheLeftButtonIntoAPan) {
    zoom(300);
    QTest::mouseMove(&window, {300, 200});
    canvas->setPanKeyHeld(true);
    EXPECT_EQ(canvas->cursor().shape(), Qt::OpenHandCursor);
    QTest::mousePress(&window, Qt::LeftButton, {}, {300, 200});
    EXPECT_FALSE(canvas->isDragging());
    canvas->setPanKeyHeld(false);
    QTest::mouseMove(&window, {290, 180});
    QTest::mouseRelease(&window, Qt::LeftButton, {}, {290, 180});
    EXPECT_EQ(centre(), QPointF(290, 180)) << "what began as a pan ends as one";
    EXPECT_TRUE(offsets.isEmpty());
}

TEST_F(CanvasHands, ASecondButtonDoesNotDisturbADrag) {
    QTest::mousePress(&window, Qt::LeftButton, {}, {300, 200});
    QTest::mouseMove(&window, {310, 200});
    QTest::mousePress(&window, Qt::MiddleButton, {}, {310, 200});
    QTest::mouseRelease(&window, Qt::MiddleButton, {}, {310, 200});
    EXPECT_TRUE(canvas->isDragging());
    QTest::mouseRelease(&window, Qt::LeftButton, {}, {330, 200});
    EXPECT_EQ(offsets, QList<QSizeF>{QSizeF(30, 0)});
}

TEST_F(CanvasHands, ACancelledDragLeavesTheScreenshotWhereItWas) {
    EXPECT_FALSE(canvas->cancelDrag());
    QTest::mousePress(&window, Qt::LeftButton, {}, {300, 200});
    QTest::mouseMove(&window, {340, 220});
    EXPECT_TRUE(canvas->cancelDrag());
    EXPECT_EQ(canvas->dragOffset(), QSizeF(0, 0));
    QTest::mouseMove(&window, {350, 220});
    EXPECT_EQ(canvas->dragOffset(), QSizeF(0, 0));
    QTest::mouseRelease(&window, Qt::LeftButton, {}, {350, 220});
    EXPECT_TRUE(offsets.isEmpty());
    QTest::mouseClick(&window, Qt::LeftButton, {}, {300, 200});
    EXPECT_EQ(offsets.size(), 1) << "the next one is a drag again";
}

TEST_F(CanvasHands, ADragGoesOnThroughAZoom) {
    QTest::mousePress(&window, Qt::LeftButton, {}, {300, 200});
    QTest::mouseMove(&window, {340, 200});
    wheel({340, 200}, 120);
    QTest::mouseMove(&window, {364, 200});
    QTest::mouseRelease(&window, Qt::LeftButton, {}, {364, 200});
    ASSERT_EQ(offsets.size(), 1);
    EXPECT_NEAR(offsets[0].width(), 40 + 20, 1e-9);
    EXPECT_NEAR(offsets[0].height(), 0, 1e-9);
}

TEST_F(CanvasHands, NothingSnapsAndNothingLimitsTheDrag) {
    QTest::mousePress(&window, Qt::LeftButton, {}, {300, 200});
    QTest::mouseMove(&window, {301, 200});
    EXPECT_EQ(canvas->dragOffset(), QSizeF(1, 0));
    QTest::mouseMove(&window, {5300, -4800});
    EXPECT_EQ(canvas->dragOffset(), QSizeF(5000, -5000));
    QTest::mouseRelease(&window, Qt::LeftButton, {}, {5300, -4800});
    EXPECT_EQ(offsets, QList<QSizeF>{QSizeF(5000, -5000)});
}

TEST_F(CanvasHands, ArrowKeysNudgeByOneAndWithShiftByTen) {
    QTest::keyClick(&window, Qt::Key_Right);
    EXPECT_TRUE(nudges.isEmpty()) << "it has not the keys";
    window.requestActivate();
    canvas->forceActiveFocus(Qt::TabFocusReason);
    ASSERT_TRUE(canvas->hasActiveFocus());
    EXPECT_TRUE(canvas->visualFocus());
    QTest::keyClick(&window, Qt::Key_Right);
    QTest::keyClick(&window, Qt::Key_Up);
    QTest::keyClick(&window, Qt::Key_Left, Qt::ShiftModifier);
    QTest::keyClick(&window, Qt::Key_Down, Qt::ShiftModifier | Qt::KeypadModifier);
    QTest::keyClick(&window, Qt::Key_Down, Qt::ControlModifier);
    QTest::keyClick(&window, Qt::Key_A);
    EXPECT_EQ(nudges, (QList<QSizeF>{{1, 0}, {0, -1}, {-10, 0}, {0, 10}}));
}

TEST_F(CanvasHands, APressBringsTheKeysWithoutTheirRing) {
    window.requestActivate();
    QTest::mouseClick(&window, Qt::LeftButton, {}, {20, 20});
    EXPECT_TRUE(canvas->hasActiveFocus());
    EXPECT_FALSE(canvas->visualFocus());
    QQuickItem other(window.contentItem());
    other.forceActiveFocus();
    canvas->forceActiveFocus(Qt::BacktabFocusReason);
    EXPECT_TRUE(canvas->visualFocus());
    QTest::mouseClick(&window, Qt::LeftButton, {}, {20, 20});
    EXPECT_FALSE(canvas->visualFocus()) << "also where they were before";
}

} // namespace
} // namespace framora
