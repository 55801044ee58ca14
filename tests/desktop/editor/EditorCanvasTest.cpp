#include "desktop/editor/EditorDesktop.h"

namespace framora {
namespace {

/// The preview under wheel, pointer and keys. The red square of the picture is 100 points wide and stands in
/// the middle of the canvas, which is shown at 100 %.
class EditorCanvas : public EditorDesktop {
protected:
    using Button = DesktopDisplay::Button;

    static inline const QColor red{220, 40, 60};
    static inline const QColor grey{240, 240, 240};

    bool shows(const QPoint& at, const QColor& color) {
        return VirtualDesktop::waitFor([&] { return display().pixelAt(at) == color; }, 5000);
    }
    void turnWheel(const QPoint& at, int notches) {
        display().moveTo(at);
        for (int i = 0; i < std::abs(notches); ++i)
            display().click(at, notches > 0 ? Button::wheelUp : Button::wheelDown);
    }
    bool waitForZoom(const char* start) {
        return VirtualDesktop::waitFor(
            [&] { return field(QStringLiteral("zoom")).startsWith(QLatin1String(start)); }, 5000);
    }
    void zoomToTheLimit() {
        turnWheel(place(QStringLiteral("canvas")).center(), 8);
        ASSERT_TRUE(waitForZoom("300"));
    }
    QString screenshotOffset() { return field(QStringLiteral("screenshotOffset")); }
    bool waitForOffset(const char* offset) {
        return waitForField(QStringLiteral("screenshotOffset"), QLatin1String(offset));
    }
};

TEST_F(EditorCanvas, TheWheelZoomsAboutThePointer) {
    open();
    const QPoint pointer = place(QStringLiteral("canvas")).center() + QPoint(40, 20);
    turnWheel(pointer, 3);
    ASSERT_TRUE(waitForZoom("172."));
    letPass();
    // 10 points right of the pointer and 90 left of it are the square's edges, 30 below and 70 above.
    EXPECT_TRUE(shows(pointer + QPoint(11, 0), red));
    EXPECT_TRUE(shows(pointer + QPoint(23, 0), grey));
    EXPECT_EQ(display().pixelAt(pointer - QPoint(149, 0)), red);
    EXPECT_EQ(display().pixelAt(pointer - QPoint(161, 0)), grey);
    EXPECT_EQ(display().pixelAt(pointer + QPoint(0, 46)), red);
    EXPECT_EQ(display().pixelAt(pointer + QPoint(0, 58)), grey);
    EXPECT_EQ(display().pixelAt(pointer - QPoint(0, 115)), red);
    EXPECT_EQ(display().pixelAt(pointer - QPoint(0, 127)), grey);

    display().keyDown("Control_L");
    turnWheel(pointer, -5);
    display().keyUp("Control_L");
    ASSERT_TRUE(waitForZoom("69.4"));
    EXPECT_TRUE(shows(pointer + QPoint(3, 0), red));
    EXPECT_TRUE(shows(pointer + QPoint(11, 0), grey));
    EXPECT_EQ(screenshotOffset(), QString());
    EXPECT_NE(field(QStringLiteral("canUndo")), QStringLiteral("true")) << "a zoom is no step";
}

TEST_F(EditorCanvas, TheMiddleButtonPansWhatIsLargerThanTheView) {
    open();
    const QPoint middle = place(QStringLiteral("canvas")).center();
    const auto pan = [&](const QPoint& by) {
        display().moveTo(middle);
        display().press(Button::middle);
        display().moveTo(middle + by / 2);
        display().moveTo(middle + by);
        display().release(Button::middle);
        letPass();
    };
    pan({60, -40});
    EXPECT_EQ(display().pixelAt(middle + QPoint(49, 0)), red) << "all of it is to be seen";
    zoomToTheLimit();
    ASSERT_TRUE(shows(middle + QPoint(142, 0), red));
    pan({60, -40});
    EXPECT_TRUE(shows(middle + QPoint(60 + 142, -40), red));
    EXPECT_EQ(display().pixelAt(middle + QPoint(60 + 158, -40)), grey);
    EXPECT_EQ(display().pixelAt(middle + QPoint(60 - 158, -40)), grey);
    EXPECT_EQ(display().pixelAt(middle + QPoint(60, -40 - 142)), red);
    EXPECT_EQ(display().pixelAt(middle + QPoint(60, -40 - 158)), grey);
    EXPECT_EQ(screenshotOffset(), QString()) << "the screenshot stayed on its canvas";
}

TEST_F(EditorCanvas, TheSpaceBarMakesADragPan) {
    open();
    zoomToTheLimit();
    const QPoint middle = place(QStringLiteral("canvas")).center();
    display().keyDown("space");
    display().drag(middle, middle + QPoint(-50, 30));
    display().keyUp("space");
    letPass();
    EXPECT_TRUE(shows(middle + QPoint(-50 - 142, 30), red));
    EXPECT_EQ(display().pixelAt(middle + QPoint(-50 - 158, 30)), grey);
    EXPECT_EQ(screenshotOffset(), QString());
    // Without it the same drag moves the screenshot: 30 pixels are 10 points here.
    display().drag(middle, middle + QPoint(30, 0));
    EXPECT_TRUE(waitForOffset("10 0"));
}

TEST_F(EditorCanvas, ArrowKeysMoveTheScreenshotAndOneUndoTakesThemBack) {
    open();
    const QPoint middle = place(QStringLiteral("canvas")).center();
    const QImage before = finalPicture();
    for (int i = 0; i < 60 && ask(QStringLiteral("focus"), QStringLiteral("focused")) != u"canvas"; ++i)
        display().key({"Tab"});
    ASSERT_TRUE(waitForFocus(QStringLiteral("canvas")));
    EXPECT_NE(ask(QStringLiteral("where canvas.focus"), QStringLiteral("at ")), QStringLiteral("nowhere"));
    for (int i = 0; i < 3; ++i)
        display().key({"Right"});
    display().key({"Shift_L", "Down"});
    display().key({"Up"});
    ASSERT_TRUE(waitForOffset("3 9"));
    letPass();
    EXPECT_EQ(display().pixelAt(middle + QPoint(52, 0)), red);
    EXPECT_EQ(display().pixelAt(middle + QPoint(54, 0)), grey);
    EXPECT_EQ(display().pixelAt(middle + QPoint(0, 58)), red);
    const QImage after = finalPicture();
    EXPECT_NE(after, before);
    EXPECT_EQ(after.copy(340, 240, 400, 400), before.copy(334, 222, 400, 400)) << "6 and 18 pixels on";
    display().key({"Control_L", "z"});
    ASSERT_TRUE(waitForOffset("0 0"));
    EXPECT_EQ(finalPicture(), before);
}

TEST_F(EditorCanvas, EscapeTakesADragBack) {
    open();
    const QPoint middle = place(QStringLiteral("canvas")).center();
    display().moveTo(middle);
    display().press();
    display().moveTo(middle + QPoint(30, 0));
    display().moveTo(middle + QPoint(80, 0));
    ASSERT_TRUE(shows(middle + QPoint(120, 0), red));
    display().key({"Escape"});
    EXPECT_TRUE(shows(middle, red));
    EXPECT_TRUE(shows(middle + QPoint(120, 0), grey));
    display().release();
    letPass();
    EXPECT_EQ(screenshotOffset(), QString());
    EXPECT_TRUE(window()) << "it took the drag back, not the window";
}

TEST_F(EditorCanvas, KeysAndButtonsUndoAndRedoWhatControlsDid) {
    open();
    click("tabs.2");
    const QImage before = finalPicture();
    display().drag(sliderPoint(QStringLiteral("padding"), 0.4), sliderPoint(QStringLiteral("padding"), 1.0),
                   20);
    ASSERT_TRUE(waitForField(QStringLiteral("padding"), QStringLiteral("200")));
    EXPECT_GT(lineCount(QStringLiteral("set padding ")), 3) << "it was written many times";
    const QImage wide = finalPicture();
    EXPECT_EQ(wide.size(), before.size() + QSize(480, 480));
    display().key({"Control_L", "z"});
    ASSERT_TRUE(waitForField(QStringLiteral("padding"), QStringLiteral("80"))) << "one drag, one step";
    EXPECT_EQ(finalPicture(), before);
    display().key({"Control_L", "Shift_L", "z"});
    ASSERT_TRUE(waitForField(QStringLiteral("padding"), QStringLiteral("200")));
    EXPECT_EQ(finalPicture(), wide);
    click("undo");
    ASSERT_TRUE(waitForField(QStringLiteral("padding"), QStringLiteral("80")));
    display().key({"Control_L", "y"});
    ASSERT_TRUE(waitForField(QStringLiteral("padding"), QStringLiteral("200")));
    click("undo");
    ASSERT_TRUE(waitForField(QStringLiteral("padding"), QStringLiteral("80")));
    click("redo");
    ASSERT_TRUE(waitForField(QStringLiteral("padding"), QStringLiteral("200")));
}

TEST_F(EditorCanvas, WhatFitsFollowsTheWindowUntilTheUserZooms) {
    QImage large(3000, 2000, QImage::Format_RGB32);
    large.fill(red);
    ASSERT_TRUE(large.save(picturePath));
    open();
    ASSERT_TRUE(waitForZoom("28.8")) << "912 of 3160";
    click("window.maximize");
    EXPECT_TRUE(waitForZoom("33.4")) << "1056 of 3160";
    display().key({"Control_L", "equal"});
    ASSERT_TRUE(waitForZoom("40.1"));
    click("window.maximize");
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return window()->geometry.width() == 1296; }));
    letPass();
    EXPECT_TRUE(waitForZoom("40.1"));
}

TEST_F(EditorCanvas, AFileFromAnotherProgramIsDroppedAsBackground) {
    QImage green(60, 40, QImage::Format_RGB32);
    green.fill(QColor(20, 180, 60));
    ASSERT_TRUE(green.save(scratch("green.png")));
    open();
    desktop.start(QStringLiteral(FRAMORA_DRAG_SOURCE), {scratch("green.png")});
    std::optional<DesktopWindow> source;
    ASSERT_TRUE(VirtualDesktop::waitFor([&] {
        source = display().windowTitled(QStringLiteral("Drag source"));
        return source.has_value();
    }));
    const QPoint middle = place(QStringLiteral("canvas")).center();
    display().moveTo(source->geometry.center());
    display().press();
    display().moveTo(source->geometry.center() + QPoint(30, 30));
    // The two programs talk while the pointer stands still.
    const auto over = [&](const char* name) {
        return ask(QStringLiteral("where ") + QLatin1String(name), QStringLiteral("at ")) != u"nowhere";
    };
    int step = 0;
    EXPECT_TRUE(VirtualDesktop::waitFor([&] {
        display().moveTo(middle + QPoint(++step % 2, 0));
        letPass();
        return over("canvas.drop.highlight");
    }));
    display().release();
    EXPECT_TRUE(shows(middle + QPoint(260, -210), QColor(20, 180, 60)));
}

} // namespace
} // namespace framora
