#include "desktop/wayland/capture/SwayCapture.h"

namespace framora {
namespace {

TEST(SwayKeysTest, spaceMovesTheSelectionWhileItIsDragged) {
    SwayCapture capture;
    ChildProcess* tool = capture.open();
    ASSERT_TRUE(tool);
    capture.input().moveTo({100, 100});
    capture.input().press();
    capture.input().moveTo({200, 180});
    capture.input().keyDown("space");
    capture.input().moveTo({300, 200});
    capture.input().keyUp("space");
    capture.input().moveTo({320, 240});
    capture.input().release();
    ASSERT_EQ(SwayCapture::exitCodeOf(*tool), 0);
    EXPECT_TRUE(
        samePicture(capture.desktop().clipboardImage(), capture.background().copy(200, 120, 120, 120)));
}

TEST(SwayKeysTest, shiftKeepsOneAxis) {
    SwayCapture capture;
    ChildProcess* tool = capture.open();
    ASSERT_TRUE(tool);
    capture.input().moveTo({100, 100});
    capture.input().press();
    capture.input().moveTo({200, 180});
    capture.input().keyDown("Shift_L");
    capture.input().moveTo({300, 184});
    capture.input().moveTo({300, 400});
    capture.input().release();
    capture.input().keyUp("Shift_L");
    ASSERT_EQ(SwayCapture::exitCodeOf(*tool), 0);
    EXPECT_TRUE(
        samePicture(capture.desktop().clipboardImage(), capture.background().copy(100, 100, 200, 80)));
}

TEST(SwayKeysTest, keysHeldAtTheStartCountWhenPressedAnew) {
    SwayCapture capture;
    const auto window = capture.show({100, 80, 300, 240}, 1, QStringLiteral("a window"), 8);
    capture.input().keyDown("Shift_L");
    capture.input().keyDown("space");
    ChildProcess* tool = capture.open();
    ASSERT_TRUE(tool);
    capture.input().moveTo({100, 100});
    capture.input().press();
    capture.input().moveTo({200, 180});
    capture.input().moveTo({300, 300}); // neither moved nor kept on an axis
    capture.input().keyUp("space");
    capture.input().keyUp("Shift_L");
    capture.input().keyDown("Shift_L");
    capture.input().moveTo({400, 304});
    capture.input().moveTo({400, 500});
    capture.input().release();
    capture.input().keyUp("Shift_L");
    ASSERT_EQ(SwayCapture::exitCodeOf(*tool), 0);
    EXPECT_EQ(capture.desktop().clipboardImage().size(), QSize(300, 200));
}

TEST(SwayKeysTest, escapeAndTheSecondaryButtonCancelAndLeaveTheClipboard) {
    SwayCapture capture({SwayOutput(), SwayOutput{{800, 600}, 2, {1280, 0}}});
    const QByteArray before = capture.fillClipboard();
    for (const bool dragging : {false, true})
        for (const bool byKey : {false, true}) {
            ChildProcess* tool = capture.open();
            ASSERT_TRUE(tool);
            capture.input().moveTo({100, 100});
            if (dragging) {
                capture.input().press();
                capture.input().moveTo({300, 200});
            }
            if (byKey)
                capture.input().key({"Escape"});
            else
                capture.input().click({300, 200}, VirtualInput::Button::right);
            EXPECT_EQ(SwayCapture::exitCodeOf(*tool), 1);
            if (dragging)
                capture.input().release();
            EXPECT_EQ(capture.desktop().clipboard(), before);
            EXPECT_TRUE(samePicture(capture.desktop().settledScreenshot(), capture.background()));
            EXPECT_EQ(capture.toolProcesses(), 0);
        }
}

TEST(SwayKeysTest, aClickWithoutADragTakesNothingAndTheOverlayStays) {
    SwayCapture capture;
    const QByteArray before = capture.fillClipboard();
    ChildProcess* tool = capture.open();
    ASSERT_TRUE(tool);
    capture.input().click({300, 300});
    EXPECT_EQ(capture.desktop().clipboard(), before);
    ASSERT_TRUE(tool->isRunning());
    capture.drag({100, 100}, {150, 150});
    EXPECT_EQ(SwayCapture::exitCodeOf(*tool), 0);
}

} // namespace
} // namespace framora
