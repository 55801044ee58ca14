#include "desktop/wayland/shell/OnSway.h"

#include <QTest>
#include <gtest/gtest.h>

namespace framora {
namespace {

TEST(WaylandScreensTest, tellsEveryOutputsPixelsRatioAndName) {
    SwayOptions options;
    options.sessionBus = false;
    options.outputs = {SwayOutput{{1280, 800}, 1}, SwayOutput{{1600, 900}, 2, {1280, 0}},
                       SwayOutput{{1366, 768}, 1.5, {2080, 0}},
                       SwayOutput{{1000, 600}, 1.25, {3000, 0}, "90"}};
    OnSway sway(options);
    const std::vector<Screen> screens = sway.screens.screens();
    ASSERT_EQ(screens.size(), 4u);
    EXPECT_EQ(screens[0], (Screen{QRect(0, 0, 1280, 800), 1, "HEADLESS-1"}));
    // The origin in the output's own pixels.
    EXPECT_EQ(screens[1], (Screen{QRect(2560, 0, 1600, 900), 2, "HEADLESS-2"}));
    // 1366 x 768 pixels seem to be 911 x 512 units: the ratio is still the one that the user chose.
    EXPECT_EQ(screens[2], (Screen{QRect(3120, 0, 1366, 768), 1.5, "HEADLESS-3"}));
    EXPECT_EQ(screens[3], (Screen{QRect(3750, 0, 600, 1000), 1.25, "HEADLESS-4"}));
}

TEST(WaylandScreensTest, hearsOfOutputsThatComeAndChange) {
    OnSway sway(OnSway::ofScale(1));
    ASSERT_EQ(sway.screens.screens().size(), 1u);
    sway.desktop.command(QStringLiteral("create_output"));
    EXPECT_TRUE(DesktopSession::waitFor([&] { return sway.screens.screens().size() == 2; }));
    sway.desktop.command(QStringLiteral("output HEADLESS-1 scale 2"));
    EXPECT_TRUE(DesktopSession::waitFor([&] { return sway.screens.screens().front().pixelRatio == 2; }));
    EXPECT_EQ(sway.screens.screens().front().pixelFrame.size(), QSize(1280, 800));
}

TEST(WaylandConnectionTest, aCompositorThatDiesLeavesAnInvalidConnectionThatNeitherSpinsNorCrashes) {
    auto sway = std::make_unique<OnSway>(OnSway::ofScale(1));
    ASSERT_TRUE(sway->connection.isValid());
    sway->endCompositor();
    EXPECT_TRUE(DesktopSession::waitFor([&] { return !sway->connection.isValid(); }));
    EXPECT_FALSE(sway->connection.roundTrip());
    EXPECT_FALSE(sway->connection.waitForEvents(10));
    EXPECT_EQ(sway->screens.screens().size(), 1u);

    const auto usedSeconds = [] {
        timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
    };
    const double before = usedSeconds();
    QTest::qWait(400);
    EXPECT_LT(usedSeconds() - before, 0.1);
}

TEST(WaylandConnectionTest, whereNobodyAnswersThereIsNone) {
    const QByteArray before = qgetenv("WAYLAND_DISPLAY");
    qputenv("WAYLAND_DISPLAY", "/nowhere/wayland-9");
    EXPECT_FALSE(WaylandConnection().isValid());
    qunsetenv("WAYLAND_DISPLAY");
    EXPECT_FALSE(WaylandConnection().isValid());
    if (!before.isEmpty())
        qputenv("WAYLAND_DISPLAY", before);
}

} // namespace
} // namespace framora
