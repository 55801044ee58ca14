#include "settings/ShortcutRecorder.h"

#include "settings/HotkeyManager.h"
#include "support/SettingsPlatform.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

using namespace KeyModifier;
using Names = std::vector<std::string>;

constexpr std::uint16_t keyA = 0;
constexpr std::uint16_t key4 = 21;
constexpr std::uint16_t escape = 53;
constexpr std::uint16_t leftCommand = 55;

class ShortcutRecorderTest : public testing::Test {
protected:
    void hold(std::uint64_t modifiers) {
        EXPECT_FALSE(platform.keys.pressHere({leftCommand, modifiers, KeyEventType::modifiersChanged}));
    }
    Settings stored() { return Settings::load(platform.defaults); }
    QString caps() { return recorder.caps().join(QLatin1Char(' ')); }

    SettingsPlatform platform;
    SettingsServices services = platform.services();
    SettingsPlatform::Posts posts{platform.notifications};
    ShortcutRecorder recorder{&Settings::hotkey, {3, command}, services};
};

TEST_F(ShortcutRecorderTest, aKeyWithModifiersIsStoredAndAnnouncedOnce) {
    recorder.start();
    EXPECT_TRUE(recorder.isSettingHotKey());
    EXPECT_TRUE(recorder.hasKeyMonitor());
    EXPECT_TRUE(platform.keys.pressHere({key4, shift | option}));
    EXPECT_EQ(recorder.configuration(), (HotkeyConfiguration{21, 0xA0000}));
    EXPECT_EQ(stored().hotkey, (HotkeyConfiguration{21, 0xA0000}));
    EXPECT_EQ(posts.names, (Names{"SettingsChanged", "HotkeyConfigurationChanged"}));
    EXPECT_FALSE(recorder.isSettingHotKey());
    EXPECT_FALSE(recorder.hasKeyMonitor());
    EXPECT_TRUE(platform.keys.recordings.empty());
}

TEST_F(ShortcutRecorderTest, itsWordsAreThoseOfTheDesktopsPrograms) {
    platform.layout.texts = {{3, QStringLiteral("f")}, {key4, QStringLiteral("4")}};
    EXPECT_EQ(recorder.words(), QStringLiteral("Super+F"));
    recorder.start();
    EXPECT_EQ(recorder.words(), QString()) << "no shortcut yet";
    platform.keys.pressHere({key4, shift | option});
    EXPECT_EQ(recorder.words(), QStringLiteral("Alt+Shift+4"));
}

TEST_F(ShortcutRecorderTest, onlyItsOwnFieldOfTheStoredSettingsIsReplaced) {
    Settings settings;
    settings.hotkey = {5, control};
    settings.tabCaptureHotkey = {6, control};
    settings.showDockIcon = false;
    settings.soundEffectsVolume = 0.125;
    settings.save(platform.defaults, platform.notifications);
    ShortcutRecorder window{&Settings::tabCaptureHotkey, settings.tabCaptureHotkey, services};
    window.start();
    // Somebody else saves while it records.
    settings.captureSound = CaptureSound::pop;
    settings.save(platform.defaults, platform.notifications);
    platform.keys.pressHere({key4, command});
    settings.tabCaptureHotkey = {key4, command};
    EXPECT_EQ(stored(), settings);
}

TEST_F(ShortcutRecorderTest, onlyTheFourModifiersAreKept) {
    recorder.start();
    platform.keys.pressHere({key4, ~std::uint64_t{0}});
    EXPECT_EQ(stored().hotkey, (HotkeyConfiguration{21, 0x1E0000}));
    recorder.start();
    platform.keys.pressHere({key4, capsLock | shift});
    EXPECT_EQ(stored().hotkey, (HotkeyConfiguration{21, shift}));
}

TEST_F(ShortcutRecorderTest, aBareKeyIsAShortcut) {
    recorder.start();
    EXPECT_TRUE(platform.keys.pressHere({key4, 0}));
    EXPECT_EQ(stored().hotkey, (HotkeyConfiguration{21, 0}));
}

TEST_F(ShortcutRecorderTest, escapeEndsItWithoutAChangeAndIsConsumed) {
    for (const std::uint64_t modifiers : {std::uint64_t{0}, shift | option}) {
        recorder.start();
        hold(shift);
        EXPECT_TRUE(platform.keys.pressHere({escape, modifiers}));
        EXPECT_FALSE(recorder.isSettingHotKey());
        EXPECT_EQ(recorder.currentModifiers(), 0u);
        EXPECT_TRUE(platform.keys.recordings.empty());
        EXPECT_EQ(recorder.configuration(), (HotkeyConfiguration{3, command}));
        EXPECT_TRUE(platform.defaults.values.empty());
        EXPECT_TRUE(posts.names.empty());
    }
    EXPECT_FALSE(platform.keys.pressHere({escape, 0})) << "after the end it is nobody's";
}

TEST_F(ShortcutRecorderTest, modifierKeysAloneRecordNothing) {
    recorder.start();
    for (const std::uint16_t key : {54, 55, 56, 57, 58, 59, 60, 62, 63})
        EXPECT_FALSE(platform.keys.pressHere({key, command})) << key << " is passed on";
    EXPECT_TRUE(recorder.isSettingHotKey());
    EXPECT_TRUE(platform.defaults.values.empty());
    EXPECT_TRUE(platform.keys.pressHere({61, 0})) << "every other key ends it";
    EXPECT_FALSE(recorder.isSettingHotKey());
}

TEST_F(ShortcutRecorderTest, theRowFollowsTheModifiersThatAreHeld) {
    platform.layout.texts[3] = QStringLiteral("f");
    EXPECT_EQ(caps(), QStringLiteral("⌘ F"));
    recorder.start();
    EXPECT_EQ(caps(), QString()) << "nothing is held yet";
    hold(command);
    EXPECT_EQ(caps(), QStringLiteral("⌘"));
    hold(command | shift | capsLock);
    EXPECT_EQ(caps(), QStringLiteral("⌘ ⇧"));
    hold(0);
    EXPECT_EQ(caps(), QString());
    EXPECT_TRUE(recorder.isSettingHotKey());
    EXPECT_TRUE(platform.defaults.values.empty()) << "pressing and releasing records nothing";
    platform.keys.pressHere({escape, 0});
    EXPECT_EQ(caps(), QStringLiteral("⌘ F"));
}

TEST_F(ShortcutRecorderTest, aStartForgetsTheModifiersOfTheLastTime) {
    recorder.start();
    hold(command);
    platform.keys.pressHere({key4, command});
    recorder.start();
    EXPECT_EQ(recorder.currentModifiers(), 0u);
    EXPECT_EQ(caps(), QString());
}

TEST_F(ShortcutRecorderTest, keyCodeZeroIsStoredAndShownAsNoKey) {
    platform.layout.texts[keyA] = QStringLiteral("a");
    recorder.start();
    hold(command);
    EXPECT_TRUE(platform.keys.pressHere({keyA, command}));
    EXPECT_EQ(stored().hotkey, (HotkeyConfiguration{0, command}));
    EXPECT_EQ(caps(), QStringLiteral("⌘"));
    EXPECT_TRUE(recorder.showsModifierOnly());
    recorder.start();
    EXPECT_FALSE(recorder.showsModifierOnly()) << "not while recording";
    platform.keys.pressHere({keyA, 0});
    EXPECT_FALSE(recorder.showsModifierOnly()) << "not without a modifier";
    EXPECT_EQ(caps(), QString());
}

TEST_F(ShortcutRecorderTest, startingAgainLeavesOneMonitor) {
    recorder.start();
    hold(command);
    recorder.start();
    EXPECT_EQ(platform.keys.recordings.size(), 1u);
    EXPECT_EQ(recorder.currentModifiers(), 0u);
}

TEST_F(ShortcutRecorderTest, withoutAMonitorItShowsAsActiveAndAFurtherClickStartsAgain) {
    platform.keys.refusesRecording = true;
    recorder.start();
    EXPECT_TRUE(recorder.isSettingHotKey());
    EXPECT_FALSE(recorder.hasKeyMonitor());
    EXPECT_FALSE(platform.keys.pressHere({key4, command}));
    platform.keys.refusesRecording = false;
    recorder.start();
    EXPECT_TRUE(platform.keys.pressHere({key4, command}));
    EXPECT_EQ(stored().hotkey, (HotkeyConfiguration{21, command}));
}

TEST_F(ShortcutRecorderTest, aRecorderThatGoesTakesItsMonitorAlong) {
    {
        ShortcutRecorder other{&Settings::hotkey, {}, services};
        other.start();
        EXPECT_EQ(platform.keys.recordings.size(), 1u);
    }
    EXPECT_TRUE(platform.keys.recordings.empty());
}

TEST_F(ShortcutRecorderTest, theProgramsShortcutsDoNotFireWhileItRecordsAndTheNewOneDoesAtOnce) {
    int captures = 0;
    HotkeyManager manager(platform.keys, platform.defaults);
    manager.screenshotHandler = HotkeyHandler{{}, {}, {}, [&] { ++captures; }};
    manager.registerHotkeys();
    const auto observer = platform.notifications.observe(notifications::hotkeyConfigurationChanged,
                                                         [&] { manager.registerHotkeys(); });
    recorder.start();
    manager.registerHotkeys(); // Its monitors are younger than the recorder's now.
    EXPECT_TRUE(platform.keys.pressHere({key4, shift | option}));
    EXPECT_EQ(captures, 0) << "the shortcut itself is recorded";
    recorder.start();
    EXPECT_TRUE(platform.keys.pressHere({7, control}));
    EXPECT_TRUE(platform.keys.pressHere({7, control}));
    EXPECT_EQ(captures, 1);
    platform.keys.pressElsewhere({key4, shift | option});
    EXPECT_EQ(captures, 1);
}

TEST_F(ShortcutRecorderTest, aChangeOfTheLayoutIsShown) {
    int changes = 0;
    QObject::connect(&recorder, &ShortcutRecorder::changed, [&] { ++changes; });
    platform.layout.texts[3] = QStringLiteral("u");
    platform.notifications.post(notifications::keyboardLayoutChanged);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(caps(), QStringLiteral("⌘ U"));
}

} // namespace
} // namespace framora
