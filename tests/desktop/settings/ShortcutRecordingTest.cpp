#include "desktop/settings/SettingsDesktop.h"

#include <xcb/xcb.h>

namespace framora {
namespace {

class ShortcutRecordingTest : public SettingsDesktop {};

TEST_F(ShortcutRecordingTest, whatIsRecordedTriggersACaptureAtOnceAndAfterARestart) {
    launch();
    openSettings();
    startRecording("Global Shortcut");
    display().key({"Control_L", "Shift_L", "9"});
    ASSERT_TRUE(soon([&] { return stored().contains("\"keyCode\": 25, \"modifierFlagsRaw\": 393216"); }))
        << stored().toStdString();
    EXPECT_TRUE(captures({"Control_L", "Shift_L", "9"})) << "with its own window in front";
    EXPECT_FALSE(captures({"Shift_L", "Alt_L", "4"}, 700)) << "the old one is forgotten";
    display().requestClose(window()->id);
    ASSERT_TRUE(soon([&] { return !isOpen(); }));
    EXPECT_TRUE(captures({"Control_L", "Shift_L", "9"})) << "with no window at all";

    framora->end();
    ASSERT_TRUE(framora->waitForExit());
    launch();
    EXPECT_TRUE(soon([&] { return captures({"Control_L", "Shift_L", "9"}, 500); }));
    EXPECT_FALSE(captures({"Shift_L", "Alt_L", "4"}, 700));
}

TEST_F(ShortcutRecordingTest, whileItRecordsTheProgramsShortcutsAreKeysLikeAnyOther) {
    launch();
    openSettings();
    startRecording("Window Capture");
    display().key({"Shift_L", "Alt_L", "4"});
    ASSERT_TRUE(soon([&] { return stored().count("\"keyCode\": 21, \"modifierFlagsRaw\": 655360") == 2; }))
        << stored().toStdString();
    EXPECT_FALSE(driver.overlay());
    EXPECT_EQ(driver.control(QStringLiteral("Both captures have this shortcut")).role,
              QStringLiteral("label"));
}

TEST_F(ShortcutRecordingTest, escapeAndTabGoToTheRecorderAloneAndEscapeThenClosesTheWindow) {
    launch();
    openSettings();
    startRecording("Global Shortcut");
    display().key({"Escape"});
    EXPECT_FALSE(soon([&] { return !isOpen(); }, 700)) << "it only ends the recording";
    EXPECT_TRUE(stored().isEmpty());
    startRecording("Global Shortcut");
    display().key({"Tab"});
    EXPECT_TRUE(soon([&] { return stored().contains("\"keyCode\": 48"); })) << stored().toStdString();
    display().key({"Escape"});
    EXPECT_TRUE(soon([&] { return !isOpen(); }));
    EXPECT_TRUE(framora->isRunning()) << framora->exitCode() << framora->output().toStdString();
}

TEST_F(ShortcutRecordingTest, spaceStartsItFromTheKeyboardAndIsNotRecordedItself) {
    launch();
    openSettings();
    startRecording("Global Shortcut");
    display().key({"Escape"});
    // The row kept the keys.
    display().key({"space"});
    driver.control(QStringLiteral("Enter a key combination"));
    display().key({"Super_L", "F7"});
    EXPECT_TRUE(soon([&] { return stored().contains("\"keyCode\": 98, \"modifierFlagsRaw\": 1048576"); }))
        << stored().toStdString();
}

TEST_F(ShortcutRecordingTest, spaceThatIsHeldStartsItOnceAndIsNotRecordedEither) {
    launch();
    openSettings();
    startRecording("Global Shortcut");
    display().key({"Escape"});
    display().keyDown("space");
    // Longer than the server waits before it repeats a key.
    EXPECT_FALSE(soon([&] { return !stored().isEmpty(); }, 1500)) << stored().toStdString();
    display().keyUp("space");
    driver.control(QStringLiteral("Enter a key combination"));
    display().key({"Super_L", "F7"});
    EXPECT_TRUE(soon([&] { return stored().contains("\"keyCode\": 98, \"modifierFlagsRaw\": 1048576"); }))
        << stored().toStdString();
}

TEST_F(ShortcutRecordingTest, aShortcutThatAnotherProgramHasIsToldUnderItsRow) {
    // As window managers and desktops take theirs: a passive grab on the root window.
    auto* connection = display().connection();
    constexpr xcb_keycode_t key4 = 13;
    xcb_grab_key(connection, 0, display().root(), XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_1, key4,
                 XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    xcb_flush(connection);
    launch();
    openSettings();
    EXPECT_EQ(driver.control(QStringLiteral("Another program already uses this shortcut")).role,
              QStringLiteral("label"));
    xcb_ungrab_key(connection, key4, display().root(), XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_1);
    xcb_flush(connection);
    startRecording("Window Capture");
    display().key({"Shift_L", "Alt_L", "5"});
    AccessibleTree tree(desktop.busAddress());
    EXPECT_TRUE(soon([&] {
        return !tree.find(QString(), QStringLiteral("Another program already uses this shortcut"));
    })) << "looked for again";
    EXPECT_TRUE(captures({"Shift_L", "Alt_L", "4"})) << "and nothing of the question is left behind";
}

} // namespace
} // namespace framora
