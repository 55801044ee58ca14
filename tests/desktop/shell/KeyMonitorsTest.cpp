#include "desktop/shell/ShellDesktop.h"
#include "platform/VirtualKeyCodes.h"

#include <gtest/gtest.h>
#include <map>

namespace framora {
namespace {

class KeyMonitorsTest : public testing::Test {
protected:
    DesktopDisplay& display() { return shell.display(); }
    void watch() {
        ASSERT_EQ(shell.ask(QStringLiteral("watch"), QStringLiteral("watching")),
                  QStringLiteral("watching global trusted"));
    }
    /// Opens the program's own window and waits until it has the keyboard.
    void openWindow() {
        shell.ask(QStringLiteral("window Own"), QStringLiteral("window"));
        ASSERT_FALSE(shell.next(QStringLiteral("active")).isEmpty());
    }

    ShellDesktop shell;
};

TEST_F(KeyMonitorsTest, seesTheKeysOfOtherProgramsWithTheirModifiersAndTakesNoneAway) {
    shell.openTerminal();
    watch();
    display().key({"Shift_L", "Alt_L", "4"});
    EXPECT_EQ(shell.next(QStringLiteral("global 21")), QStringLiteral("global 21 a0000"));
    display().key({"t"});
    EXPECT_EQ(shell.next(QStringLiteral("global 17")), QStringLiteral("global 17 0"));
    EXPECT_TRUE(
        VirtualDesktop::waitFor([&] { return shell.typedIntoTerminal().endsWith(QStringLiteral("t")); }));
}

TEST_F(KeyMonitorsTest, tellsTheModifiersApartLeftAndRight) {
    shell.openTerminal();
    watch();
    const std::map<const char*, QString> modifiers{
        {"Shift_L", QStringLiteral("20000")},   {"Shift_R", QStringLiteral("20000")},
        {"Control_L", QStringLiteral("40000")}, {"Control_R", QStringLiteral("40000")},
        {"Alt_L", QStringLiteral("80000")},     {"Alt_R", QStringLiteral("80000")},
        {"Super_L", QStringLiteral("100000")},  {"Super_R", QStringLiteral("100000")},
    };
    for (const auto& [key, bits] : modifiers) {
        display().key({key, "F9"});
        EXPECT_EQ(shell.next(QStringLiteral("global 101")), QStringLiteral("global 101 ") + bits) << key;
    }
}

TEST_F(KeyMonitorsTest, reportsCapsLockAsABitOfItsOwn) {
    shell.openTerminal();
    watch();
    display().key({"Caps_Lock"});
    display().key({"Shift_L", "Alt_L", "4"});
    EXPECT_EQ(shell.next(QStringLiteral("global 21")), QStringLiteral("global 21 b0000"));
    display().key({"Caps_Lock"});
    display().key({"F9"});
    EXPECT_EQ(shell.next(QStringLiteral("global 101")), QStringLiteral("global 101 0"));
}

TEST_F(KeyMonitorsTest, aKeyKeepsItsPlaceInAnotherLayout) {
    shell.openTerminal();
    watch();
    shell.desktop().run(QStringLiteral("setxkbmap"), {QStringLiteral("fr")});
    // What a French keyboard has in the place of the digit 4; keycodes are places, 13 this one.
    shell.desktop().run(QStringLiteral("xdotool"), {QStringLiteral("key"), QStringLiteral("13")});
    EXPECT_EQ(shell.next(QStringLiteral("global")), QStringLiteral("global 21 0"));
}

TEST_F(KeyMonitorsTest, aSwappedAltAndSuperAreFollowed) {
    shell.openTerminal();
    watch();
    shell.desktop().run(QStringLiteral("setxkbmap"), {QStringLiteral("us"), QStringLiteral("-option"),
                                                      QStringLiteral("altwin:swap_lalt_lwin")});
    // The same places on the keyboard, the meanings exchanged: what the layout calls Super counts as Super.
    ASSERT_TRUE(VirtualDesktop::waitFor([&] {
        shell.unread();
        shell.desktop().run(QStringLiteral("xdotool"), {QStringLiteral("key"), QStringLiteral("64+F9")},
                            3000);
        const QString line = shell.next(QStringLiteral("global 101"), 1000);
        return line == QStringLiteral("global 101 100000");
    }));
}

TEST_F(KeyMonitorsTest, ownWindowsKeysAreLocalAndCanBeConsumed) {
    watch();
    openWindow();
    display().key({"a"});
    EXPECT_EQ(shell.next(QStringLiteral("local")), QStringLiteral("local 0 0"));
    display().key({"Shift_L", "x"});
    EXPECT_EQ(shell.next(QStringLiteral("local 7")), QStringLiteral("local 7 20000"));
    display().key({"b"});
    EXPECT_EQ(shell.next(QStringLiteral("local 11")), QStringLiteral("local 11 0"));
    EXPECT_EQ(shell.ask(QStringLiteral("text"), QStringLiteral("text")), QStringLiteral("text ab"));
    EXPECT_TRUE(shell.unread().filter(QStringLiteral("global")).isEmpty());
}

TEST_F(KeyMonitorsTest, theFirstKeyAfterTheFocusLeftIsAnotherProgramsAlready) {
    const DesktopWindow terminal = shell.openTerminal();
    watch();
    openWindow();
    shell.unread();
    display().activate(terminal.id);
    // No pause for the program to notice.
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return display().focusedWindow() == terminal.id; }));
    display().key({"F9"});
    EXPECT_EQ(shell.next(QStringLiteral("global")), QStringLiteral("global 101 0"));
}

TEST_F(KeyMonitorsTest, aRemovedMonitorSeesNothing) {
    shell.openTerminal();
    watch();
    display().key({"F9"});
    ASSERT_FALSE(shell.next(QStringLiteral("global 101")).isEmpty());
    shell.ask(QStringLiteral("unwatch"), QStringLiteral("unwatched"));
    display().key({"q"});
    ASSERT_TRUE(
        VirtualDesktop::waitFor([&] { return shell.typedIntoTerminal().endsWith(QStringLiteral("q")); }));
    EXPECT_EQ(shell.unread(), QStringList());
}

TEST_F(KeyMonitorsTest, whileTheGateIsClosedKeysAreDroppedAndNotKept) {
    shell.openTerminal();
    watch();
    shell.ask(QStringLiteral("gate close"), QStringLiteral("gate"));
    display().key({"q"});
    ASSERT_TRUE(
        VirtualDesktop::waitFor([&] { return shell.typedIntoTerminal().endsWith(QStringLiteral("q")); }));
    EXPECT_EQ(shell.unread(), QStringList());
    shell.ask(QStringLiteral("gate open"), QStringLiteral("gate"));
    display().key({"F9"});
    EXPECT_EQ(shell.next(QStringLiteral("global")), QStringLiteral("global 101 0"));
}

} // namespace
} // namespace framora
