#include "settings/ShortcutBinding.h"

#include "platform/Localized.h"
#include "settings/BindingGuide.h"
#include "settings/PermissionsMonitor.h"
#include "settings/ShortcutRecorder.h"
#include "support/SettingsPlatform.h"

#include <QClipboard>
#include <QGuiApplication>
#include <gtest/gtest.h>

namespace framora {
namespace {

using Route = GlobalShortcuts::Route;
using Kind = HandBinding::Kind;

constexpr HotkeyConfiguration areaShortcut{21, KeyModifier::shift | KeyModifier::option};

class BindingGuideTest : public testing::Test {
protected:
    BindingGuide guide(Kind kind, const HotkeyConfiguration& shortcut = areaShortcut) {
        return bindingGuide({kind, program}, QStringLiteral("Capture Area"), QStringLiteral("capture-area"),
                            shortcut, layout);
    }
    QString onlyLine(Kind kind, const HotkeyConfiguration& shortcut = areaShortcut) {
        const auto lines = guide(kind, shortcut).lines;
        EXPECT_EQ(lines.size(), 1U);
        return lines.front().text;
    }

    FixedKeyboardLayout layout;
    QString program = QStringLiteral("/usr/bin/framora");
};

TEST_F(BindingGuideTest, forSwayItIsALineOfItsConfiguration) {
    EXPECT_EQ(onlyLine(Kind::sway),
              QStringLiteral("bindsym Mod1+Shift+4 exec /usr/bin/framora --capture-area"));
    EXPECT_EQ(onlyLine(Kind::sway, {17, KeyModifier::command | KeyModifier::control}),
              QStringLiteral("bindsym Mod4+Ctrl+t exec /usr/bin/framora --capture-area"));
    EXPECT_EQ(onlyLine(Kind::sway, {0x1000 + 99, 0}),
              QStringLiteral("bindsym Print exec /usr/bin/framora --capture-area"));
}

TEST_F(BindingGuideTest, swaysLineNamesTheKeyAsTheLayoutInForceDoes) {
    layout.texts = {{21, QStringLiteral("'")}};
    EXPECT_TRUE(onlyLine(Kind::sway).startsWith(QStringLiteral("bindsym Mod1+Shift+apostrophe exec ")));
}

TEST_F(BindingGuideTest, aKeyThatSwayCannotNameLeavesTheCommand) {
    EXPECT_EQ(onlyLine(Kind::sway, {55, KeyModifier::shift}),
              QStringLiteral("/usr/bin/framora --capture-area"));
    EXPECT_EQ(onlyLine(Kind::sway, {0, 0}), QStringLiteral("/usr/bin/framora --capture-area"));
}

TEST_F(BindingGuideTest, forGnomeItIsNameCommandAndKeysOfACustomShortcut) {
    layout.texts = {{21, QStringLiteral("4")}};
    const auto lines = guide(Kind::gnome).lines;
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0].text, QStringLiteral("Capture Area"));
    EXPECT_EQ(lines[1].text, QStringLiteral("/usr/bin/framora --capture-area"));
    EXPECT_EQ(lines[2].text, QStringLiteral("Alt+Shift+4"));
    EXPECT_FALSE(lines[2].isCopied) << "keys are pressed there, not pasted";
}

TEST_F(BindingGuideTest, aPathWithOtherThanPlainLettersIsOneWordForAShell) {
    program = QStringLiteral("/home/me/it's mine/framora");
    EXPECT_EQ(onlyLine(Kind::command), QStringLiteral("'/home/me/it'\\''s mine/framora' --capture-area"));
}

class ShortcutBindingTest : public testing::Test {
protected:
    void make() {
        recorder = std::make_unique<ShortcutRecorder>(&Settings::hotkey, areaShortcut, platform.services());
        binding = std::make_unique<ShortcutBinding>(shortcutId::captureArea, QStringLiteral("Capture Area"),
                                                    *recorder, platform.services());
    }
    QString line(int index) const {
        return binding->lines()[index].toMap()[QStringLiteral("text")].toString();
    }

    SettingsPlatform platform;
    std::unique_ptr<ShortcutRecorder> recorder;
    std::unique_ptr<ShortcutBinding> binding;
};

TEST_F(ShortcutBindingTest, whereKeysAreSeenOrBoundAsAskedThereIsNothingToSay) {
    make();
    for (const Route route : {Route::watching, Route::desktop}) {
        platform.shortcuts.way = route;
        EXPECT_TRUE(binding->explanation().isEmpty());
        EXPECT_TRUE(binding->lines().isEmpty());
        EXPECT_TRUE(binding->notice().isEmpty());
        EXPECT_TRUE(binding->remedy().isEmpty());
    }
}

TEST_F(ShortcutBindingTest, theLinesFollowTheShortcutThatIsRecorded) {
    platform.shortcuts.way = Route::byHand;
    platform.handBinding.kind = Kind::sway;
    make();
    EXPECT_EQ(line(0), QStringLiteral("bindsym Mod1+Shift+4 exec /usr/bin/framora --capture-area"));
    int changes = 0;
    QObject::connect(binding.get(), &ShortcutBinding::changed, [&] { ++changes; });
    recorder->start();
    platform.keys.pressHere({17, KeyModifier::control});
    EXPECT_GT(changes, 0);
    EXPECT_EQ(line(0), QStringLiteral("bindsym Ctrl+t exec /usr/bin/framora --capture-area"));
}

TEST_F(ShortcutBindingTest, theCopyButtonPutsTheLineOnTheClipboard) {
    platform.shortcuts.way = Route::byHand;
    platform.handBinding.kind = Kind::gnome;
    make();
    binding->copy(1);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("/usr/bin/framora --capture-area"));
    binding->copy(0);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("Capture Area"));
    binding->copy(7);
    binding->copy(-1);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("Capture Area"));
}

TEST_F(ShortcutBindingTest, whatTheDesktopBoundOtherwiseIsSaidAndCanBeChangedWhereItHasAPage) {
    platform.shortcuts.way = Route::desktop;
    platform.shortcuts.keys[QStringLiteral("capture-area")] = QStringLiteral("Meta+Print");
    make();
    platform.panes.working.clear();
    EXPECT_TRUE(binding->notice().contains(QStringLiteral("Meta+Print")));
    EXPECT_TRUE(binding->remedy().isEmpty());
    platform.shortcuts.configurable = true;
    int changes = 0;
    QObject::connect(binding.get(), &ShortcutBinding::changed, [&] { ++changes; });
    platform.notifications.post(notifications::shortcutBindingsChanged);
    EXPECT_EQ(changes, 1);
    EXPECT_FALSE(binding->remedy().isEmpty());
    binding->mend();
    EXPECT_EQ(platform.shortcuts.configured, 1);
    EXPECT_EQ(platform.shortcuts.asked, 0);
}

TEST_F(ShortcutBindingTest, whatTheDesktopKeepsFromEarlierIsChangedInItsOwnSettings) {
    platform.shortcuts.way = Route::desktop;
    make();
    EXPECT_TRUE(binding->remedy().isEmpty()) << "there is nothing to change";
    platform.shortcuts.keys[QStringLiteral("capture-area")] = QStringLiteral("Alt+$");
    EXPECT_EQ(binding->remedy(), localized(QStringLiteral("open.accessibility.settings")));
    binding->mend();
    EXPECT_EQ(platform.panes.tried, std::vector<std::string>{"page accessibility"});
    EXPECT_EQ(platform.shortcuts.configured, 0);
}

TEST_F(ShortcutBindingTest, keysThatTheDesktopNeverGaveAreMissed) {
    platform.shortcuts.way = Route::desktop;
    platform.shortcuts.keys[QStringLiteral("capture-area")] = QString();
    make();
    EXPECT_EQ(binding->notice(), localized(QStringLiteral("shortcut.desktop.no.keys")));
}

TEST_F(ShortcutBindingTest, aRefusalCanBeAskedAbout) {
    platform.shortcuts.way = Route::refused;
    make();
    EXPECT_EQ(binding->notice(), localized(QStringLiteral("shortcut.desktop.refused")));
    binding->mend();
    EXPECT_EQ(platform.shortcuts.asked, 1);
}

TEST_F(ShortcutBindingTest, thePermissionsRowSaysWhatIsToBeDoneInThisSession) {
    const auto description = [this](Route route) {
        platform.shortcuts.way = route;
        return PermissionsMonitor(platform.services()).accessibilityDescription();
    };
    EXPECT_EQ(description(Route::byHand), localized(QStringLiteral("accessibility.by.hand")));
    EXPECT_EQ(description(Route::refused), localized(QStringLiteral("accessibility.refused")));
    EXPECT_EQ(description(Route::watching), localized(QStringLiteral("accessibility.description")));
}

TEST_F(ShortcutBindingTest, swayHasNoPageThatTheRowsButtonCouldOpen) {
    platform.shortcuts.way = Route::byHand;
    EXPECT_TRUE(PermissionsMonitor(platform.services()).canGrantAccessibility());
    platform.handBinding.kind = Kind::sway;
    EXPECT_FALSE(PermissionsMonitor(platform.services()).canGrantAccessibility());
    platform.shortcuts.way = Route::refused;
    EXPECT_TRUE(PermissionsMonitor(platform.services()).canGrantAccessibility());
}

} // namespace
} // namespace framora
