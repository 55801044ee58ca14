#include "platform/x11/X11ColorPicker.h"

#include "desktop/support/VirtualDesktop.h"
#include "platform/x11/X11Screens.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>

namespace framora {
namespace {

/// The real picker on a desktop's root window alone.
class X11ColorPicking : public testing::Test {
protected:
    static DesktopOptions bare() {
        DesktopOptions options;
        options.windowManager = WindowManager::none;
        return options;
    }
    static X11Connection::Link linkTo(const VirtualDesktop& desktop) {
        int screen = 0;
        xcb_connection_t* connection = xcb_connect(desktop.displayName().toLocal8Bit(), &screen);
        return {connection, screen};
    }
    DesktopDisplay& display() { return desktop.display(); }
    void pick() {
        picker.pick(
            nullptr,
            [this](std::optional<QColor> color) {
                ++answers;
                picked = color;
            },
            [this] { ++failures; });
    }
    bool waitForAnswer(int milliseconds = 5000) {
        return VirtualDesktop::waitFor([&] { return answers > 0; }, milliseconds);
    }
    /// Takes the pointer as somebody else; false where it cannot be had.
    bool takePointer() {
        xcb_connection_t* other = display().connection();
        const XcbReply<xcb_grab_pointer_reply_t> pointer(xcb_grab_pointer_reply(
            other,
            xcb_grab_pointer(other, 0, display().root(), 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                             XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
            nullptr));
        return pointer && pointer->status == XCB_GRAB_STATUS_SUCCESS;
    }
    /// Whether somebody else can have pointer and keys.
    bool isFree() {
        xcb_connection_t* other = display().connection();
        const bool hasPointer = takePointer();
        const XcbReply<xcb_grab_keyboard_reply_t> keyboard(
            xcb_grab_keyboard_reply(other,
                                    xcb_grab_keyboard(other, 0, display().root(), XCB_CURRENT_TIME,
                                                      XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                    nullptr));
        const bool both = hasPointer && keyboard && keyboard->status == XCB_GRAB_STATUS_SUCCESS;
        letGo();
        return both;
    }
    void letGo() {
        xcb_ungrab_pointer(display().connection(), XCB_CURRENT_TIME);
        xcb_ungrab_keyboard(display().connection(), XCB_CURRENT_TIME);
        xcb_flush(display().connection());
    }

    VirtualDesktop desktop{bare()};
    X11Connection connection{linkTo(desktop)};
    X11Screens screens{connection};
    static constexpr std::chrono::milliseconds patience{700};
    X11ColorPicker picker{connection, screens, patience};
    std::optional<QColor> picked;
    int answers = 0;
    int failures = 0;
};

TEST_F(X11ColorPicking, DismissedItLeavesTheScreenAtOnceAndAnswersNothing) {
    pick();
    EXPECT_FALSE(isFree());
    picker.dismiss();
    EXPECT_EQ(answers, 0) << "never inside the call";
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return isFree(); }));
    ASSERT_TRUE(waitForAnswer());
    EXPECT_FALSE(picked);
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return answers > 1; }, 100));
}

TEST_F(X11ColorPicking, AnAnswerOnItsWayIsDroppedOnceItIsCancelled) {
    pick();
    picker.dismiss();
    picker.cancel();
    EXPECT_FALSE(waitForAnswer(200));
    pick();
    picker.cancel();
    EXPECT_FALSE(waitForAnswer(200));
    EXPECT_TRUE(isFree());
    pick();
    picker.dismiss();
    EXPECT_TRUE(waitForAnswer()) << "the next one is heard of again";
}

TEST_F(X11ColorPicking, AnotherPickEndsTheOneUnderWay) {
    pick();
    pick();
    ASSERT_TRUE(waitForAnswer());
    EXPECT_FALSE(picked);
    EXPECT_EQ(answers, 1);
    EXPECT_FALSE(isFree());
}

TEST_F(X11ColorPicking, StartsOnceAClosingMenuLetsGo) {
    ASSERT_TRUE(takePointer());
    pick();
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return answers > 0; }, 60));
    letGo();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return !isFree(); }));
    EXPECT_EQ(answers, 0);
}

TEST_F(X11ColorPicking, FailsWhereSomebodyElseKeepsThePointer) {
    ASSERT_TRUE(takePointer());
    pick();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return failures > 0; }));
    EXPECT_EQ(answers, 0);
    letGo();
    EXPECT_TRUE(isFree());
}

TEST_F(X11ColorPicking, EndsByItselfOnceItIsForgotten) {
    pick();
    QElapsedTimer since;
    since.start();
    for (int i = 1; since.elapsed() < 2 * patience.count(); ++i) {
        display().moveTo({100 + i % 2, 100});
        VirtualDesktop::waitFor([&] { return answers > 0; }, 50);
    }
    EXPECT_EQ(answers, 0) << "a pointer that moves is not forgotten";
    ASSERT_TRUE(waitForAnswer());
    EXPECT_FALSE(picked);
    EXPECT_EQ(failures, 0);
    EXPECT_TRUE(isFree()) << "a screen locker can have the keys";
}

} // namespace
} // namespace framora
