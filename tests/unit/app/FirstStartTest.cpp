#include "app/FirstStart.h"

#include "platform/GlobalShortcuts.h"
#include "platform/NotificationCenter.h"
#include "platform/desktop/JsonFileDefaults.h"
#include "settings/Settings.h"
#include "support/ManualMainQueue.h"
#include "support/MemoryDefaults.h"
#include "support/RecordingPlatform.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <optional>

namespace framora {
namespace {

using Route = GlobalShortcuts::Route;

class RoutedShortcuts final : public GlobalShortcuts {
public:
    Route route() const override { return way; }
    std::optional<QString> differingKeys(const QString&) const override { return std::nullopt; }
    bool canConfigure() const override { return false; }
    void configure() override {}
    void askAgain() override {}

    Route way = Route::byHand;
};

/// A program that has just been started by a user without settings, at first where nothing shows it.
class FirstStartTest : public testing::Test {
protected:
    FirstStartTest() { statusBar.isShown = false; }
    void start() {
        firstStart.emplace(
            FirstStart::Services{queue, defaults, notifications, shortcuts, statusBar, [this] { ++opened; }});
    }
    bool hasSettings() const { return defaults.dataForKey(Settings::storeKey).has_value(); }

    PlatformLog log;
    ManualMainQueue queue;
    MemoryDefaults defaults;
    NotificationCenter notifications;
    RoutedShortcuts shortcuts;
    RecordingStatusBar statusBar{log};
    int opened = 0;
    std::optional<FirstStart> firstStart;
};

TEST_F(FirstStartTest, wherePlainlyNothingWouldBeSeenThePreferencesOpen) {
    start();
    queue.advance(1.9);
    EXPECT_EQ(opened, 0) << "a tray may still come";
    queue.advance(0.2);
    EXPECT_EQ(opened, 1);
    queue.advance(3600);
    EXPECT_EQ(opened, 1);
}

TEST_F(FirstStartTest, theNextStartIsNoFirstOne) {
    start();
    queue.advance(3);
    EXPECT_EQ(Settings::load(defaults), Settings());
    ASSERT_TRUE(hasSettings());
    start();
    queue.advance(60);
    EXPECT_EQ(opened, 1);
}

TEST_F(FirstStartTest, aTrayShowsTheProgramAlsoWhenItComesALittleLater) {
    start();
    queue.advance(1.5);
    statusBar.isShown = true;
    queue.advance(60);
    EXPECT_EQ(opened, 0);
    EXPECT_FALSE(hasSettings());
    EXPECT_EQ(queue.waitingCount(), 0U);
}

TEST_F(FirstStartTest, shortcutsAreAWayToTheProgram) {
    for (const Route route : {Route::watching, Route::desktop, Route::refused}) {
        shortcuts.way = route;
        start();
        queue.advance(60);
        EXPECT_EQ(opened, 0);
        EXPECT_FALSE(hasSettings());
        EXPECT_EQ(queue.waitingCount(), 0U);
    }
}

TEST_F(FirstStartTest, thatThereAreNoneMayBeKnownALittleLater) {
    shortcuts.way = Route::desktop;
    start();
    queue.advance(5);
    EXPECT_EQ(opened, 0);
    shortcuts.way = Route::byHand;
    queue.advance(1);
    EXPECT_EQ(opened, 1);
}

TEST_F(FirstStartTest, aUserWithSettingsHasFoundTheProgramBefore) {
    Settings().save(defaults, notifications);
    start();
    EXPECT_EQ(queue.waitingCount(), 0U);
}

TEST_F(FirstStartTest, aDamagedStoreIsNoFirstStartAndStaysAsItIs) {
    defaults.isDamaged = true;
    start();
    EXPECT_EQ(queue.waitingCount(), 0U);
    queue.advance(60);
    EXPECT_EQ(opened, 0);
    EXPECT_TRUE(defaults.values.empty());
}

TEST_F(FirstStartTest, aStoreThatIsDamagedMeanwhileStaysAsItIs) {
    start();
    queue.advance(1.5);
    defaults.isDamaged = true;
    queue.advance(60);
    EXPECT_EQ(opened, 0);
    EXPECT_TRUE(defaults.values.empty());
}

TEST_F(FirstStartTest, aFileThatIsNoJsonStaysAsItIs) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("defaults.json"));
    const QByteArray damaged = R"({"Settings": {"showDockIcon": fal)";
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.write(damaged);
    file.flush();
    JsonFileDefaults stored(path);
    const FirstStart first(
        FirstStart::Services{queue, stored, notifications, shortcuts, statusBar, [this] { ++opened; }});
    queue.advance(60);
    EXPECT_EQ(opened, 0);
    QFile again(path);
    ASSERT_TRUE(again.open(QIODevice::ReadOnly));
    EXPECT_EQ(again.readAll(), damaged);
}

TEST_F(FirstStartTest, whereNothingCanBeStoredEveryStartWouldBeTheFirst) {
    defaults.isReadOnly = true;
    for (int starts = 0; starts < 2; ++starts) {
        start();
        queue.advance(60);
        EXPECT_EQ(opened, 0);
        EXPECT_EQ(queue.waitingCount(), 0U);
    }
}

TEST_F(FirstStartTest, anythingThatIsStoredTellsOfAnEarlierStart) {
    ASSERT_TRUE(defaults.setData("RecentColors", "[]"));
    start();
    EXPECT_EQ(queue.waitingCount(), 0U);
}

TEST_F(FirstStartTest, whatTheUserDoesFirstEndsIt) {
    start();
    queue.advance(1);
    firstStart.reset();
    queue.advance(60);
    EXPECT_EQ(opened, 0);
}

} // namespace
} // namespace framora
