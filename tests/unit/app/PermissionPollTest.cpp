#include "AppFixture.h"

#include <algorithm>

namespace framora {
namespace {

class PermissionPollTest : public AppTest {
protected:
    void launch() {
        delegate.emplace(services());
        delegate->applicationDidFinishLaunching();
        queue.runPending();
        logNotifications();
        takeLog();
    }
    static auto countOf(const PlatformLog& calls, const char* call) {
        return std::count(calls.begin(), calls.end(), call);
    }

    std::optional<AppDelegate> delegate;
};

TEST_F(PermissionPollTest, accessibilityIsAskedForEverySecond) {
    launch();
    queue.advance(0.9);
    EXPECT_EQ(countOf(log, "accessibility?"), 0);
    queue.advance(0.1);
    EXPECT_EQ(countOf(log, "accessibility?"), 1);
    queue.advance(9);
    EXPECT_EQ(countOf(log, "accessibility?"), 10);
}

TEST_F(PermissionPollTest, screenRecordingIsAskedForWhenMoreThanTenSecondsHavePassed) {
    launch();
    queue.advance(1);
    EXPECT_EQ(countOf(takeLog(), "screen recording?"), 1) << "the first check really asks";
    queue.advance(10);
    EXPECT_EQ(countOf(takeLog(), "screen recording?"), 0) << "ten seconds are not more than ten";
    queue.advance(1);
    EXPECT_EQ(countOf(takeLog(), "screen recording?"), 1);
    queue.advance(10);
    EXPECT_EQ(countOf(takeLog(), "screen recording?"), 0);
    queue.advance(1);
    EXPECT_EQ(countOf(takeLog(), "screen recording?"), 1);
}

TEST_F(PermissionPollTest, gainingAccessibilityIsNoticedWithinASecondAndRegistersTwice) {
    launch();
    queue.advance(1);
    takeLog();
    permissions.trusted = true;
    queue.advance(1);
    EXPECT_EQ(takeLog(), joined({{"accessibility?"},
                                 registration(true),
                                 registration(true),
                                 {"post AccessibilityPermissionsGranted", "post PermissionsStatusChanged"}}));
    queue.advance(1);
    EXPECT_EQ(takeLog(), (PlatformLog{"accessibility?"})) << "once";
}

TEST_F(PermissionPollTest, losingAccessibilityOnlyChangesTheStatus) {
    permissions.trusted = true;
    launch();
    queue.advance(1);
    takeLog();
    permissions.trusted = false;
    queue.advance(1);
    EXPECT_EQ(log, (PlatformLog{"accessibility?", "post PermissionsStatusChanged"}));
}

TEST_F(PermissionPollTest, gainingScreenRecordingIsNoticedAfterTheThrottle) {
    launch();
    queue.advance(1);
    takeLog();
    permissions.recording = true;
    queue.advance(10);
    EXPECT_EQ(countOf(takeLog(), "post PermissionsStatusChanged"), 0);
    queue.advance(1);
    EXPECT_EQ(takeLog(),
              (PlatformLog{"accessibility?", "screen recording?", "post PermissionsStatusChanged"}));
}

TEST_F(PermissionPollTest, screenRecordingOnceGrantedIsNeverAskedForAgain) {
    permissions.recording = true;
    launch();
    permissions.recording = false;
    queue.advance(60);
    EXPECT_EQ(countOf(log, "screen recording?"), 0);
    EXPECT_EQ(countOf(log, "post PermissionsStatusChanged"), 0);
}

TEST_F(PermissionPollTest, screenRecordingGrantedWhileRunningIsKeptToo) {
    launch();
    permissions.recording = true;
    queue.advance(1);
    EXPECT_EQ(countOf(takeLog(), "post PermissionsStatusChanged"), 1);
    permissions.recording = false;
    queue.advance(60);
    EXPECT_EQ(countOf(log, "screen recording?"), 0);
    EXPECT_EQ(countOf(log, "post PermissionsStatusChanged"), 0);
}

TEST_F(PermissionPollTest, bothGainedTogetherAreAnnouncedInOrder) {
    launch();
    permissions.trusted = permissions.recording = true;
    queue.advance(1);
    EXPECT_EQ(log, joined({{"accessibility?", "screen recording?"},
                           registration(true),
                           registration(true),
                           {"post AccessibilityPermissionsGranted", "post PermissionsStatusChanged",
                            "post PermissionsStatusChanged"}}));
}

TEST_F(PermissionPollTest, becomingActiveChecksAtOnceUnderTheSameThrottle) {
    launch();
    notifications.post(notifications::applicationDidBecomeActive);
    EXPECT_EQ(takeLog(), (PlatformLog{"accessibility?", "screen recording?"}));
    notifications.post(notifications::applicationDidBecomeActive);
    EXPECT_EQ(takeLog(), (PlatformLog{"accessibility?"}));
    queue.advance(10);
    EXPECT_EQ(countOf(takeLog(), "screen recording?"), 0);
    queue.advance(1);
    EXPECT_EQ(countOf(takeLog(), "screen recording?"), 1) << "eleven seconds after that check";
}

TEST_F(PermissionPollTest, aChangeIsAnnouncedFromTheQueueNotFromTheCheck) {
    launch();
    permissions.trusted = true;
    notifications.post(notifications::applicationDidBecomeActive);
    EXPECT_EQ(takeLog(), (PlatformLog{"accessibility?", "screen recording?"}));
    queue.runPending();
    EXPECT_EQ(countOf(log, "post AccessibilityPermissionsGranted"), 1);
}

TEST_F(PermissionPollTest, whatLaunchSawIsNotAnnounced) {
    permissions.trusted = permissions.recording = true;
    launch();
    queue.advance(5);
    EXPECT_EQ(log, PlatformLog(5, "accessibility?"));
}

TEST_F(PermissionPollTest, anAnnouncementForADelegateThatIsGoneIsDropped) {
    launch();
    permissions.trusted = true;
    notifications.post(notifications::applicationDidBecomeActive);
    delegate.reset();
    takeLog();
    queue.runPending();
    EXPECT_TRUE(log.empty());
}

} // namespace
} // namespace framora
