#include "platform/x11/X11ColorPicker.h"

#include "desktop/support/VirtualDesktop.h"
#include "platform/x11/X11Screens.h"

#include <QElapsedTimer>
#include <algorithm>
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
    void pick() { pickWith(picker); }
    void pickWith(X11ColorPicker& which) {
        which.pick(
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
    X11ColorPicker picker{connection, screens};
    static constexpr std::chrono::milliseconds shortPatience{700};
    X11ColorPicker impatient{connection, screens, shortPatience};
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
    // On a machine that stalls between two moves it has truly been left alone: that says nothing.
    qint64 longestPause = 0;
    for (int tries = 0; tries == 0 || (longestPause > shortPatience.count() / 2 && tries < 5); ++tries) {
        impatient.cancel();
        answers = 0;
        longestPause = 0;
        pickWith(impatient);
        QElapsedTimer since;
        QElapsedTimer pause;
        since.start();
        pause.start();
        for (int i = 1; since.elapsed() < 2 * shortPatience.count(); ++i) {
            display().moveTo({100 + i % 2, 100});
            VirtualDesktop::waitFor([&] { return answers > 0; }, 50);
            longestPause = std::max(longestPause, pause.restart());
        }
    }
    EXPECT_EQ(answers, 0) << "a pointer that moves is not forgotten";
    ASSERT_TRUE(waitForAnswer());
    EXPECT_FALSE(picked);
    EXPECT_EQ(failures, 0);
    EXPECT_TRUE(isFree()) << "a screen locker can have the keys";
}

TEST_F(X11ColorPicking, AnEventThatComesWithTheScreensIsDelivered) {
    const auto events = std::make_shared<int>(0);
    connection.addEventHandler([events](const xcb_generic_event_t&) { ++*events; });
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection, connection.root(), XCB_CW_EVENT_MASK, &mask);
    connection.processEvents(true);
    // Somebody else's doing, which has happened when this returns.
    xcb_connection_t* other = display().connection();
    xcb_change_property(other, XCB_PROP_MODE_REPLACE, display().root(), XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                        4, "root");
    const XcbReply<xcb_get_input_focus_reply_t> after(
        xcb_get_input_focus_reply(other, xcb_get_input_focus(other), nullptr));
    // Read along with the answer: the socket has nothing more to announce.
    EXPECT_FALSE(screens.screens().empty());
    EXPECT_EQ(*events, 0) << "never inside the call";
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return *events > 0; }));
}

} // namespace
} // namespace framora
