#include "settings/PermissionsMonitor.h"

#include "support/SettingsPlatform.h"

#include <QClipboard>
#include <QGuiApplication>
#include <gtest/gtest.h>

namespace framora {
namespace {

using Names = std::vector<std::string>;
const Names granted{"AccessibilityPermissionsGranted"};

class PermissionsMonitorTest : public testing::Test {
protected:
    void give(bool trusted, bool recording) {
        platform.permissions.trusted = trusted;
        platform.permissions.recording = recording;
    }
    Names takePosts() { return std::exchange(posts.names, {}); }
    std::string shown() {
        return std::string(monitor.hasAccessibility() ? "A" : "a") +
               (monitor.hasScreenRecording() ? "S" : "s");
    }
    /// Checks that happen while `cause` runs.
    int checksDuring(const std::function<void()>& cause) {
        const int before = platform.permissions.checks;
        cause();
        return platform.permissions.checks - before;
    }
    void post(const char* name) { platform.notifications.post(name); }

    SettingsPlatform platform;
    SettingsPlatform::Posts posts{platform.notifications};
    PermissionsMonitor monitor{platform.services()};
};

TEST_F(PermissionsMonitorTest, startsWithNothingGrantedAndAsksNothing) {
    give(true, true);
    EXPECT_EQ(shown(), "as");
    EXPECT_EQ(platform.permissions.checks, 0);
    EXPECT_EQ(platform.queue.waitingCount(), 0u);
}

TEST_F(PermissionsMonitorTest, withBothGrantedTheFirstTickEndsThePollThatAppearingStarts) {
    give(true, true);
    monitor.appear();
    EXPECT_EQ(shown(), "AS");
    EXPECT_EQ(takePosts(), granted) << "the flag starts as not granted";
    EXPECT_TRUE(monitor.isPolling()) << "set up after the check";
    EXPECT_EQ(checksDuring([&] { post(notifications::applicationDidBecomeActive); }), 1);
    EXPECT_FALSE(monitor.isPolling());
    monitor.disappear();

    monitor.appear();
    EXPECT_EQ(takePosts(), Names{}) << "nothing has changed since";
    EXPECT_EQ(checksDuring([&] { platform.queue.advance(0.9); }), 0);
    EXPECT_EQ(checksDuring([&] { platform.queue.advance(0.2); }), 1);
    EXPECT_FALSE(monitor.isPolling());
    EXPECT_EQ(checksDuring([&] { platform.queue.advance(10); }), 0);
    EXPECT_EQ(checksDuring([&] { post(notifications::applicationDidBecomeActive); }), 0);
    EXPECT_EQ(takePosts(), Names{});
}

TEST_F(PermissionsMonitorTest, aGrantWhileVisibleIsSeenWithinASecondAndPostedOnce) {
    give(false, true);
    monitor.appear();
    EXPECT_EQ(shown(), "aS");
    platform.queue.advance(3.5);
    EXPECT_EQ(takePosts(), Names{});
    platform.permissions.trusted = true;
    platform.queue.advance(0.5);
    EXPECT_EQ(shown(), "AS");
    EXPECT_EQ(takePosts(), granted);
    EXPECT_FALSE(monitor.isPolling());
    platform.queue.advance(5);
    EXPECT_EQ(takePosts(), Names{});
}

TEST_F(PermissionsMonitorTest, theOtherPermissionPostsNothing) {
    monitor.appear();
    platform.permissions.recording = true;
    platform.queue.advance(1);
    EXPECT_EQ(shown(), "aS");
    platform.permissions.recording = false;
    platform.queue.advance(1);
    EXPECT_EQ(shown(), "as");
    EXPECT_EQ(takePosts(), Names{});
    EXPECT_TRUE(monitor.isPolling());
}

TEST_F(PermissionsMonitorTest, aRevocationFlipsTheRowBackAndPostsNothing) {
    give(true, false);
    monitor.appear();
    EXPECT_EQ(takePosts(), granted);
    platform.permissions.trusted = false;
    platform.queue.advance(1);
    EXPECT_EQ(shown(), "as");
    EXPECT_EQ(takePosts(), Names{});
    platform.permissions.trusted = true;
    platform.queue.advance(1);
    EXPECT_EQ(shown(), "As");
    EXPECT_EQ(takePosts(), granted) << "given again, told again";
}

TEST_F(PermissionsMonitorTest, theStatusNotificationChecksLaterAndAlsoAfterThePollHasEnded) {
    give(true, true);
    monitor.appear();
    platform.queue.advance(1);
    ASSERT_FALSE(monitor.isPolling());
    give(false, false);
    EXPECT_EQ(checksDuring([&] { post(notifications::permissionsStatusChanged); }), 0)
        << "not within the post";
    EXPECT_EQ(checksDuring([&] { platform.queue.runPending(); }), 1);
    EXPECT_EQ(shown(), "as");
    EXPECT_EQ(checksDuring([&] { platform.queue.advance(5); }), 0) << "the poll stays ended";
    takePosts();
    give(true, true);
    post(notifications::permissionsStatusChanged);
    platform.queue.runPending();
    EXPECT_EQ(shown(), "AS");
    EXPECT_EQ(takePosts(), granted);
}

TEST_F(PermissionsMonitorTest, becomingActiveChecksAtOnceWhileOneIsMissing) {
    monitor.appear();
    platform.permissions.trusted = true;
    EXPECT_EQ(checksDuring([&] { post(notifications::applicationDidBecomeActive); }), 1);
    EXPECT_EQ(shown(), "As");
    platform.permissions.recording = true;
    EXPECT_EQ(checksDuring([&] { post(notifications::applicationDidBecomeActive); }), 1);
    EXPECT_EQ(shown(), "AS");
    EXPECT_EQ(checksDuring([&] { post(notifications::applicationDidBecomeActive); }), 0);
}

TEST_F(PermissionsMonitorTest, offScreenNothingIsWatched) {
    monitor.appear();
    post(notifications::permissionsStatusChanged); // Its check is still under way when the section goes.
    monitor.disappear();
    give(true, true);
    EXPECT_EQ(checksDuring([&] {
                  platform.queue.advance(5);
                  post(notifications::applicationDidBecomeActive);
                  post(notifications::permissionsStatusChanged);
                  platform.queue.advance(5);
              }),
              0);
    EXPECT_EQ(shown(), "as");
    EXPECT_EQ(checksDuring([&] { monitor.appear(); }), 1);
    EXPECT_EQ(shown(), "AS");
    EXPECT_TRUE(monitor.isPolling()) << "coming back starts it again";
}

/// Each permission given and taken at each moment of the section's life.
TEST_F(PermissionsMonitorTest, whateverHappensWhenTheRowsShowTheLastCheckAndEachGrantIsPostedOnce) {
    constexpr int moments = 5;
    for (int first = 0; first < moments; ++first) {
        for (int second = 0; second < moments; ++second) {
            for (int states = 0; states < 16; ++states) {
                SettingsPlatform fresh;
                SettingsPlatform::Posts freshPosts(fresh.notifications);
                PermissionsMonitor section(fresh.services());
                section.appear();
                const auto run = [&](int moment) {
                    switch (moment) {
                    case 0:
                        section.appear();
                        break;
                    case 1:
                        fresh.queue.advance(1);
                        break;
                    case 2:
                        fresh.notifications.post(notifications::applicationDidBecomeActive);
                        break;
                    case 3:
                        fresh.notifications.post(notifications::permissionsStatusChanged);
                        fresh.queue.runPending();
                        break;
                    default:
                        section.disappear();
                        section.appear();
                    }
                };
                fresh.permissions.trusted = states & 1;
                fresh.permissions.recording = states & 2;
                run(first);
                const bool both = (states & 3) == 3;
                EXPECT_EQ(section.hasAccessibility(), bool(states & 1));
                EXPECT_EQ(section.hasScreenRecording(), bool(states & 2));
                fresh.permissions.trusted = states & 4;
                fresh.permissions.recording = states & 8;
                run(second);
                // Only a tick, or becoming active, goes unnoticed once both were there.
                const bool polled = first != 0 && first != 4;
                const bool missed = both && polled && (second == 1 || second == 2);
                EXPECT_EQ(section.hasAccessibility(), bool(states & (missed ? 1 : 4)))
                    << first << " " << second << " " << states;
                const int grants = int(bool(states & 1)) + int(!missed && !(states & 1) && (states & 4));
                EXPECT_EQ(freshPosts.names, Names(std::size_t(grants), granted[0]))
                    << first << " " << second << " " << states;
            }
        }
    }
}

TEST_F(PermissionsMonitorTest, grantingAccessibilityLetsTheDesktopAskAndOpensThePaneHalfASecondLater) {
    monitor.appear();
    monitor.grantAccessibility();
    EXPECT_EQ(platform.permissions.requests, 1);
    platform.queue.advance(0.4);
    EXPECT_EQ(platform.panes.tried, Names{});
    platform.queue.advance(0.2);
    EXPECT_EQ(platform.panes.tried, (Names{"page accessibility"}));
}

TEST_F(PermissionsMonitorTest, thePaneOpensThoughTheSectionHasGoneMeanwhile) {
    {
        PermissionsMonitor section(platform.services());
        section.appear();
        section.grantAccessibility();
        section.disappear();
    }
    platform.queue.advance(0.6);
    EXPECT_EQ(platform.panes.tried, (Names{"page accessibility"}));
}

TEST_F(PermissionsMonitorTest, grantingScreenRecordingOpensThePaneAtOnceAndAsksNobody) {
    monitor.grantScreenRecording();
    EXPECT_EQ(platform.panes.tried, (Names{"page screen capture"}));
    EXPECT_EQ(platform.permissions.requests, 0);
}

TEST_F(PermissionsMonitorTest, grantingScreenRecordingHasTheDesktopAskWhereItDoes) {
    platform.permissions.asksForScreen = true;
    monitor.grantScreenRecording();
    EXPECT_EQ(platform.permissions.screenRequests, 1);
    EXPECT_EQ(platform.panes.tried, Names{});
}

TEST_F(PermissionsMonitorTest, aStoredDenialIsSaidWithTheLineThatTakesItBack) {
    monitor.appear();
    const QString usual = monitor.screenRecordingDescription();
    EXPECT_EQ(monitor.commandToForgetDenial(), QString());
    int told = 0;
    QObject::connect(&monitor, &PermissionsMonitor::changed, [&] { ++told; });
    platform.permissions.forget = QStringLiteral("forget it");
    platform.queue.advance(1.1);
    EXPECT_EQ(told, 1);
    EXPECT_EQ(monitor.commandToForgetDenial(), QStringLiteral("forget it"));
    EXPECT_NE(monitor.screenRecordingDescription(), usual);
    monitor.copyCommandToForgetDenial();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("forget it"));
    platform.permissions.forget.clear();
    platform.queue.advance(1.1);
    EXPECT_EQ(told, 2);
    EXPECT_EQ(monitor.screenRecordingDescription(), usual);
}

TEST_F(PermissionsMonitorTest, theRoutesToAPaneAreTriedInOrderUntilOneWorks) {
    const Names all{"page screen capture", "overview", "program"};
    for (std::size_t works = 0; works < all.size(); ++works) {
        platform.panes.tried.clear();
        platform.panes.working = all[works];
        EXPECT_TRUE(openPrivacyPane(platform.panes, PrivacyPane::screenCapture));
        EXPECT_EQ(platform.panes.tried, Names(all.begin(), all.begin() + std::ptrdiff_t(works) + 1));
    }
    platform.panes.tried.clear();
    platform.panes.working.clear();
    EXPECT_FALSE(openPrivacyPane(platform.panes, PrivacyPane::screenCapture));
    EXPECT_EQ(platform.panes.tried, all);
}

TEST_F(PermissionsMonitorTest, whereThereIsNowhereToGrantItThatIsSaid) {
    int told = 0;
    QObject::connect(&monitor, &PermissionsMonitor::noSettingsToOpen, [&] { ++told; });
    monitor.grantAccessibility();
    platform.queue.advance(1);
    EXPECT_EQ(told, 0);
    platform.panes.working.clear();
    monitor.grantAccessibility();
    platform.queue.advance(1);
    EXPECT_EQ(told, 1);
}

} // namespace
} // namespace framora
