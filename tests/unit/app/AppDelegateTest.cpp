#include "AppFixture.h"

#include "platform/Localized.h"

namespace framora {
namespace {

class AppDelegateTest : public AppTest {
protected:
    void launch() {
        delegate.emplace(services());
        delegate->applicationDidFinishLaunching();
        queue.runPending();
        takeLog();
    }
    void choose(std::size_t entry) { statusBar.menu.at(entry).action(); }

    std::optional<AppDelegate> delegate;
};

const PlatformLog statusItem{"status item", "symbol f.square.fill 'Framora' 17", "menu"};
const PlatformLog bothQueries{"accessibility?", "screen recording?"};

TEST_F(AppDelegateTest, nothingIsAskedOfTheDesktopBeforeLaunch) {
    delegate.emplace(services());
    EXPECT_TRUE(log.empty());
}

TEST_F(AppDelegateTest, launchGoesInOrder) {
    delegate.emplace(services());
    delegate->applicationDidFinishLaunching();
    EXPECT_EQ(takeLog(), joined({statusItem, bothQueries, registration(false), bothQueries, {"regular"}}));
    queue.runPending();
    EXPECT_EQ(takeLog(), PlatformLog{}) << "nothing is queued without the permission";
}

TEST_F(AppDelegateTest, withThePermissionTheShortcutsAreRegisteredThreeTimes) {
    permissions.trusted = true;
    delegate.emplace(services());
    delegate->applicationDidFinishLaunching();
    EXPECT_EQ(takeLog(), joined({statusItem, bothQueries, registration(false), bothQueries, {"regular"}}));
    queue.runPending();
    EXPECT_EQ(takeLog(), joined({registration(true), registration(true)}));
    EXPECT_EQ(monitors.keys.globals.size(), 2u);
    EXPECT_EQ(monitors.keys.locals.size(), 2u);
}

TEST_F(AppDelegateTest, aProgramWithoutAWindowInTheTaskBarIsAnAccessory) {
    Settings settings;
    settings.showDockIcon = false;
    store(settings);
    delegate.emplace(services());
    delegate->applicationDidFinishLaunching();
    EXPECT_EQ(log.back(), "accessory");
}

TEST_F(AppDelegateTest, theMenuHasFourEntriesInOrder) {
    launch();
    std::vector<std::pair<QString, QString>> entries;
    for (const auto& entry : statusBar.menu)
        entries.emplace_back(entry.title, entry.keyEquivalent);
    const auto text = [](const char* key) { return localized(QString::fromLatin1(key)); };
    EXPECT_EQ(entries, (std::vector<std::pair<QString, QString>>{{text("screenshot"), ""},
                                                                 {text("window capture"), ""},
                                                                 {text("preferences"), ","},
                                                                 {text("quit"), "q"}}));
    for (const char* key : {"screenshot", "window capture", "preferences", "quit"})
        EXPECT_NE(text(key), QString::fromLatin1(key)) << "no text in the table";
}

TEST_F(AppDelegateTest, theMenuRunsItsActions) {
    launch();
    choose(0);
    EXPECT_EQ(takeLog(), (PlatformLog{"change count", "launch -i -c -x", "wait", "change count"}));
    choose(1);
    EXPECT_EQ(takeLog(), (PlatformLog{"change count", "launch -w -c -x", "wait", "change count"}));
    choose(2);
    EXPECT_EQ(takeLog(), (PlatformLog{"make window", "centre", "front", "activate"}));
    choose(3);
    EXPECT_EQ(takeLog(), (PlatformLog{"terminate"}));
}

TEST_F(AppDelegateTest, whereThereIsNoTrayTheRestIsLaunchedAllTheSame) {
    statusBar.hasItems = false;
    delegate.emplace(services());
    delegate->applicationDidFinishLaunching();
    EXPECT_EQ(log, joined({{"status item"}, bothQueries, registration(false), bothQueries, {"regular"}}));
}

TEST_F(AppDelegateTest, withoutItsSymbolTheItemStillHasItsMenu) {
    statusBar.hasSymbol = false;
    launch();
    EXPECT_EQ(statusBar.menu.size(), 4u);
}

TEST_F(AppDelegateTest, theShortcutsRunTheCaptures) {
    launch();
    monitors.keys.pressElsewhere({21, KeyModifier::shift | KeyModifier::option});
    EXPECT_EQ(takeLog().at(1), "launch -i -c -x");
    EXPECT_TRUE(monitors.keys.pressHere({17, KeyModifier::shift | KeyModifier::option}));
    EXPECT_EQ(takeLog().at(1), "launch -w -c -x");
}

TEST_F(AppDelegateTest, aChangedShortcutCountsOnceItIsAnnounced) {
    launch();
    Settings settings;
    settings.hotkey = {3, KeyModifier::command};
    store(settings);
    notifications.post(notifications::hotkeyConfigurationChanged);
    EXPECT_EQ(takeLog(), registration(true));
    monitors.keys.pressElsewhere({3, KeyModifier::command});
    EXPECT_EQ(takeLog().at(1), "launch -i -c -x");
    monitors.keys.pressElsewhere({21, KeyModifier::shift | KeyModifier::option});
    EXPECT_TRUE(log.empty());
}

TEST_F(AppDelegateTest, theGrantedPermissionRegistersTheShortcutsAgain) {
    launch();
    notifications.post(notifications::accessibilityPermissionsGranted);
    EXPECT_EQ(log, registration(true));
}

TEST_F(AppDelegateTest, theDockIconIsReadAfreshWhenItChanges) {
    launch();
    Settings settings;
    settings.showDockIcon = false;
    store(settings);
    EXPECT_TRUE(log.empty()) << "a save alone changes nothing";
    notifications.post(notifications::dockIconChanged);
    EXPECT_EQ(takeLog(), (PlatformLog{"accessory"}));
    settings.showDockIcon = true;
    store(settings);
    notifications.post(notifications::dockIconChanged);
    EXPECT_EQ(takeLog(), (PlatformLog{"regular"}));
}

TEST_F(AppDelegateTest, aCaptureRequestedWhileOneRunsDoesNotStart) {
    launch();
    captureTool.whileOpen = [this] {
        choose(0);
        choose(1);
        monitors.keys.pressElsewhere({17, KeyModifier::shift | KeyModifier::option});
    };
    choose(0);
    EXPECT_EQ(takeLog(), (PlatformLog{"change count", "launch -i -c -x", "wait", "change count"}));
    captureTool.whileOpen = nullptr;
    choose(1);
    EXPECT_EQ(takeLog().at(1), "launch -w -c -x") << "the next one does";
}

TEST_F(AppDelegateTest, afterAFailedLaunchTheNextCaptureStarts) {
    launch();
    captureTool.canLaunch = false;
    choose(0);
    captureTool.canLaunch = true;
    takeLog();
    choose(0);
    EXPECT_EQ(log, (PlatformLog{"change count", "launch -i -c -x", "wait", "change count"}));
}

TEST_F(AppDelegateTest, anOpenSettingsWindowIsRaised) {
    launch();
    delegate->openSettings();
    takeLog();
    delegate->openSettings();
    EXPECT_EQ(log, (PlatformLog{"front", "activate"}));
}

TEST_F(AppDelegateTest, aClosedSettingsWindowIsFollowedByAFreshOne) {
    launch();
    delegate->openSettings();
    closeNotices.at(0)();
    EXPECT_FALSE(delegate->settingsWindow());
    takeLog();
    delegate->openSettings();
    EXPECT_EQ(log, (PlatformLog{"make window", "centre", "front", "activate"}));
}

TEST_F(AppDelegateTest, aClosingSettingsWindowIsNotTheOneThatIsOpenedNext) {
    launch();
    delegate->openSettings();
    closeNotices.at(0)();
    // In the same turn, while the first one's handlers still run.
    delegate->openSettings();
    const SettingsWindow* second = delegate->settingsWindow();
    ASSERT_TRUE(second);
    queue.runPending();
    EXPECT_EQ(delegate->settingsWindow(), second);
}

TEST_F(AppDelegateTest, whereNoWindowCanBeMadeNothingComesForward) {
    launch();
    makesWindows = false;
    delegate->openSettings();
    EXPECT_EQ(takeLog(), (PlatformLog{"make window"}));
    EXPECT_FALSE(delegate->settingsWindow());
    makesWindows = true;
    delegate->openSettings();
    EXPECT_EQ(takeLog(), (PlatformLog{"make window", "centre", "front", "activate"}));
}

TEST_F(AppDelegateTest, theClosingOfAnotherWindowIsIgnored) {
    launch();
    delegate->openSettings();
    closeNotices.at(0)();
    delegate->openSettings();
    takeLog();
    closeNotices.at(0)();
    EXPECT_TRUE(delegate->settingsWindow());
    EXPECT_TRUE(log.empty());
}

TEST_F(AppDelegateTest, nothingCallsADelegateThatIsGone) {
    permissions.trusted = true;
    delegate.emplace(services());
    delegate->applicationDidFinishLaunching();
    delegate->openSettings();
    const auto menu = statusBar.menu;
    const auto globals = monitors.keys.globals;
    delegate.reset();
    takeLog();

    for (const auto& entry : menu)
        entry.action();
    for (const auto& [token, handler] : globals)
        handler({21, KeyModifier::shift | KeyModifier::option});
    closeNotices.at(0)();
    for (const char* name :
         {notifications::dockIconChanged, notifications::hotkeyConfigurationChanged,
          notifications::accessibilityPermissionsGranted, notifications::applicationDidBecomeActive})
        notifications.post(name);
    queue.advance(30);
    EXPECT_EQ(log, PlatformLog{});
    EXPECT_EQ(queue.waitingCount(), 0u) << "the poll has ended";
}

} // namespace
} // namespace framora
