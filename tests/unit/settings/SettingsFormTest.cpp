#include "settings/SettingsForm.h"

#include "platform/Localized.h"
#include "platform/VirtualKeyCodes.h"
#include "support/SettingsPlatform.h"

#include <QSignalSpy>
#include <gtest/gtest.h>
#include <limits>
#include <tuple>

namespace framora {
namespace {

using namespace KeyModifier;
using Names = std::vector<std::string>;
const Names threePosts{"SettingsChanged", "HotkeyConfigurationChanged", "DockIconChanged"};

class SettingsFormTest : public testing::Test {
protected:
    SettingsForm& form() {
        if (!m_form)
            m_form = std::make_unique<SettingsForm>(platform.services());
        return *m_form;
    }
    Settings stored() { return Settings::load(platform.defaults); }
    void store(const Settings& settings) {
        settings.save(platform.defaults, platform.notifications);
        posts.names.clear();
    }

    SettingsPlatform platform;
    SettingsPlatform::Posts posts{platform.notifications};

private:
    std::unique_ptr<SettingsForm> m_form;
};

TEST_F(SettingsFormTest, showsAFreshCopyOfWhatIsStored) {
    Settings settings;
    settings.hotkey = {5, command};
    settings.tabCaptureHotkey = {6, control};
    settings.showDockIcon = false;
    settings.copyToClipboard = false;
    settings.soundEffectsEnabled = false;
    settings.soundEffectsVolume = 0.25;
    settings.captureSound = CaptureSound::basso;
    store(settings);
    EXPECT_EQ(form().settings(), settings);
    EXPECT_EQ(form().hotKey()->configuration(), settings.hotkey);
    EXPECT_EQ(form().tabCaptureHotKey()->configuration(), settings.tabCaptureHotkey);
    EXPECT_FALSE(form().showDockIcon());
    EXPECT_FALSE(form().copyToClipboard());
    EXPECT_FALSE(form().soundEnabled());
    EXPECT_EQ(form().volume(), 0.25);
    EXPECT_EQ(form().selectedSound(), QStringLiteral("Basso"));
    EXPECT_TRUE(posts.names.empty()) << "showing changes nothing";
}

TEST_F(SettingsFormTest, everyFieldIsStoredAtOnceAndAnnouncedInOrder) {
    const std::vector<std::pair<std::function<void()>, std::function<void(Settings&)>>> edits{
        {[&] { form().setShowDockIcon(false); }, [](Settings& s) { s.showDockIcon = false; }},
        {[&] { form().setCopyToClipboard(false); }, [](Settings& s) { s.copyToClipboard = false; }},
        {[&] { form().setSoundEnabled(false); }, [](Settings& s) { s.soundEffectsEnabled = false; }},
        {[&] { form().setVolume(1.0); }, [](Settings& s) { s.soundEffectsVolume = 1.0; }},
        {[&] { form().setSelectedSound(QStringLiteral("Hero")); },
         [](Settings& s) { s.captureSound = CaptureSound::hero; }},
    };
    Settings expected;
    for (const auto& [edit, change] : edits) {
        posts.names.clear();
        edit();
        change(expected);
        EXPECT_EQ(stored(), expected);
        EXPECT_EQ(posts.names, threePosts);
        posts.names.clear();
        edit();
        EXPECT_TRUE(posts.names.empty()) << "the same value again is no change";
    }
}

TEST_F(SettingsFormTest, theRecordIsStoredBeforeAnyoneIsTold) {
    std::vector<bool> seen;
    std::vector<NotificationCenter::Token> tokens;
    for (const char* name : {notifications::settingsChanged, notifications::hotkeyConfigurationChanged,
                             notifications::dockIconChanged})
        tokens.push_back(
            platform.notifications.observe(name, [&] { seen.push_back(stored().showDockIcon); }));
    form().setShowDockIcon(false);
    EXPECT_EQ(seen, (std::vector<bool>{false, false, false}));
}

TEST_F(SettingsFormTest, aRecordedShortcutIsStoredTwiceAndAnnouncedTwice) {
    form().hotKey()->start();
    platform.keys.pressHere({9, control});
    EXPECT_EQ(stored().hotkey, (HotkeyConfiguration{9, control}));
    EXPECT_EQ(form().settings().hotkey, (HotkeyConfiguration{9, control}));
    EXPECT_EQ(posts.names, (Names{"SettingsChanged", "HotkeyConfigurationChanged", "SettingsChanged",
                                  "HotkeyConfigurationChanged", "DockIconChanged"}));
    posts.names.clear();
    form().setCopyToClipboard(false);
    EXPECT_EQ(stored().hotkey, (HotkeyConfiguration{9, control})) << "a later edit keeps it";

    form().tabCaptureHotKey()->start();
    platform.keys.pressHere({8, control});
    EXPECT_EQ(stored().tabCaptureHotkey, (HotkeyConfiguration{8, control}));
    EXPECT_EQ(stored().hotkey, (HotkeyConfiguration{9, control}));
}

TEST_F(SettingsFormTest, recordingOneShortcutEndsTheRecordingOfTheOther) {
    form().hotKey()->start();
    form().tabCaptureHotKey()->start();
    EXPECT_FALSE(form().hotKey()->isSettingHotKey());
    EXPECT_TRUE(form().tabCaptureHotKey()->isSettingHotKey());
    EXPECT_TRUE(form().isRecording());
    EXPECT_EQ(platform.keys.recordings.size(), 1u);
    platform.keys.pressHere({53, 0});
    EXPECT_FALSE(form().isRecording());
}

TEST_F(SettingsFormTest, theVolumeIsShownAsAWholePercentage) {
    EXPECT_EQ(form().volumeText(), QStringLiteral("50%"));
    for (const auto& [volume, text] : std::vector<std::pair<double, const char*>>{
             {0, "0%"}, {1, "100%"}, {0.29, "28%"}, {0.57, "56%"}, {0.999, "99%"}, {0.009, "0%"}}) {
        form().setVolume(volume);
        EXPECT_EQ(form().volumeText(), QLatin1String(text));
        EXPECT_EQ(stored().soundEffectsVolume, volume);
    }
    form().setVolume(7);
    EXPECT_EQ(stored().soundEffectsVolume, 1.0);
    form().setVolume(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(stored().soundEffectsVolume, 1.0);
}

TEST_F(SettingsFormTest, aStoredVolumeOutsideItsRangeIsHeardAndShownAtItsEnd) {
    for (const auto& [volume, percent, heard] :
         {std::tuple{1e300, "100%", 1.0f}, {-1e300, "0%", 0.0f}, {7.0, "100%", 1.0f}}) {
        Settings settings;
        settings.soundEffectsVolume = volume;
        settings.save(platform.defaults, platform.notifications);
        platform.played.clear();
        SettingsForm fresh(platform.services());
        EXPECT_EQ(fresh.volumeText(), QLatin1String(percent));
        EXPECT_EQ(fresh.volume(), double(heard));
        fresh.testSound();
        ASSERT_EQ(platform.played.size(), 1U);
        EXPECT_EQ(platform.played[0].second, heard);
    }
}

TEST_F(SettingsFormTest, theSoundsAreListedInTheirOrder) {
    EXPECT_EQ(SettingsForm::sounds().join(QLatin1Char(' ')),
              QStringLiteral("Hero Submarine Blow Frog Funk Sosumi Basso Pop"));
    form().setSelectedSound(QStringLiteral("Glass"));
    EXPECT_EQ(form().selectedSound(), QStringLiteral("Frog"));
    EXPECT_TRUE(posts.names.empty());
}

TEST_F(SettingsFormTest, theSoundIsTestedWhetherOrNotSoundsAreOn) {
    form().setSoundEnabled(false);
    form().setVolume(0.25);
    form().setSelectedSound(QStringLiteral("Pop"));
    form().testSound();
    EXPECT_EQ(platform.played, (std::vector<std::pair<CaptureSound, float>>{{CaptureSound::pop, 0.25f}}));
}

TEST_F(SettingsFormTest, thePermissionsAreThereOnlyWhereTheKeyboardCannotBeWatchedAsTheFormIsMade) {
    platform.permissions.trusted = true;
    {
        SettingsForm without(platform.services());
        EXPECT_FALSE(without.permissions()) << "the other permission alone brings nothing up";
        platform.permissions.trusted = false;
        EXPECT_FALSE(without.permissions());
    }
    EXPECT_TRUE(form().permissions());
    platform.permissions.trusted = true;
    EXPECT_TRUE(form().permissions()) << "it stays and shows the grant";
}

TEST_F(SettingsFormTest, theAlertComesWhereThereIsNowhereToGrantThePermission) {
    platform.panes.working.clear();
    EXPECT_FALSE(form().showAccessibilityAlert());
    form().permissions()->grantAccessibility();
    platform.queue.advance(1);
    EXPECT_TRUE(form().showAccessibilityAlert());
    form().setShowAccessibilityAlert(false);
    EXPECT_FALSE(form().showAccessibilityAlert());
}

TEST_F(SettingsFormTest, equalShortcutsAreToldUnderBoth) {
    EXPECT_EQ(form().hotKeyConflict(), QString());
    form().hotKey()->start();
    platform.keys.pressHere({17, shift | option});
    const QString text = localized(QStringLiteral("shortcut.conflict.other.capture"));
    EXPECT_EQ(form().hotKeyConflict(), text);
    EXPECT_EQ(form().tabCaptureHotKeyConflict(), text);
    EXPECT_EQ(stored().hotkey, (HotkeyConfiguration{17, shift | option})) << "told, not refused";
    form().tabCaptureHotKey()->start();
    platform.keys.pressHere({17, shift});
    EXPECT_EQ(form().hotKeyConflict(), QString());
    EXPECT_EQ(form().tabCaptureHotKeyConflict(), QString());
}

TEST_F(SettingsFormTest, aShortcutThatTheDesktopHasIsToldAndLookedForAgainWhenTheProgramBecomesActive) {
    platform.desktopShortcuts.taken = {{21, shift | option}};
    EXPECT_EQ(form().hotKeyConflict(), localized(QStringLiteral("shortcut.conflict.other.program")));
    EXPECT_EQ(form().tabCaptureHotKeyConflict(), QString());
    platform.desktopShortcuts.taken = {{17, shift | option}};
    platform.notifications.post(notifications::applicationDidBecomeActive);
    EXPECT_EQ(form().hotKeyConflict(), QString());
    EXPECT_NE(form().tabCaptureHotKeyConflict(), QString());
}

TEST_F(SettingsFormTest, aKeyForWritingOnItsOwnIsTakenAndWarnedAbout) {
    platform.layout.texts = {{0, QStringLiteral("a")}, {1, QStringLiteral("s")}};
    const QString text = localized(QStringLiteral("shortcut.conflict.bare.key"));
    const QSignalSpy told(&form(), &SettingsForm::conflictsChanged);
    form().hotKey()->start();
    platform.keys.pressHere({0, capsLock});
    EXPECT_EQ(stored().hotkey, (HotkeyConfiguration{0, 0})) << "warned about, not refused";
    EXPECT_EQ(form().hotKeyConflict(), text.arg(QStringLiteral("A"))) << "its row shows no cap";
    EXPECT_EQ(form().tabCaptureHotKeyConflict(), QString());
    form().hotKey()->start();
    platform.keys.pressHere({1, 0});
    EXPECT_EQ(form().hotKeyConflict(), text.arg(QStringLiteral("S")));
    EXPECT_EQ(told.count(), 2);
    form().hotKey()->start();
    platform.keys.pressHere({1, option});
    EXPECT_EQ(form().hotKeyConflict(), QString());
}

TEST_F(SettingsFormTest, aFunctionKeyOrPrintOnItsOwnIsNoReasonForAWarning) {
    const std::uint16_t print = virtualKeyFromEvdev(99).value();
    for (const std::uint16_t keyCode : {std::uint16_t(122), std::uint16_t(90), print}) {
        form().hotKey()->start();
        platform.keys.pressHere({keyCode, 0});
        EXPECT_EQ(stored().hotkey.keyCode, keyCode);
        EXPECT_EQ(form().hotKeyConflict(), QString()) << keyCode;
    }
}

TEST_F(SettingsFormTest, bitsOutsideTheShortcutMaskMakeNoDifferenceForAConflict) {
    Settings settings;
    settings.hotkey = {17, shift | option | capsLock};
    store(settings);
    EXPECT_NE(form().hotKeyConflict(), QString());
}

TEST_F(SettingsFormTest, startingAtLoginIsNoPartOfTheStoredSettings) {
    platform.loginItem.enabled = true;
    EXPECT_TRUE(form().startsAtLogin());
    form().setStartsAtLogin(false);
    EXPECT_FALSE(platform.loginItem.enabled);
    EXPECT_FALSE(form().startsAtLogin());
    EXPECT_TRUE(posts.names.empty());
    platform.loginItem.isReadOnly = true;
    form().setStartsAtLogin(true);
    EXPECT_FALSE(form().startsAtLogin()) << "the switch shows what is stored";
}

} // namespace
} // namespace framora
