#include "feedback/ToastManager.h"
#include "platform/wayland/WaylandClipboard.h"
#include "platform/wayland/WaylandPasteboard.h"
#include "platform/wayland/WaylandScreens.h"
#include "platform/wayland/WaylandToastPanels.h"
#include "support/FixedAppearance.h"
#include "support/ManualMainQueue.h"
#include "unit/platform/ToyCompositor.h"

#include <QClipboard>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QTest>
#include <ctime>
#include <gtest/gtest.h>
#include <wayland-protocols/ext-data-control-v1.h>
#include <wayland-protocols/wlr-data-control-unstable-v1.h>
#include <wayland-protocols/wlr-layer-shell-unstable-v1.h>
#include <wayland-protocols/xdg-output-unstable-v1.h>

namespace framora {
namespace {

constexpr std::uint32_t deviceFinished = 2;
constexpr std::uint32_t layerSurfaceClosed = 1;

/// The program's parts of a Wayland desktop against a compositor whose every word the test chooses.
class WaylandPartsTest : public testing::Test {
protected:
    WaylandPartsTest() { qputenv("WAYLAND_DISPLAY", compositor.socketPath()); }
    ~WaylandPartsTest() override { qunsetenv("WAYLAND_DISPLAY"); }

    static bool soon(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, 5000); }
    static double usedSeconds() {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
    }

    ToyCompositor compositor;
};

TEST_F(WaylandPartsTest, outputsComeAndGoAndTheLastOnesAreRemembered) {
    const int first = compositor.addOutput("A", {1920, 1080});
    WaylandConnection connection;
    WaylandOutputs outputs(connection);
    WaylandScreens screens(connection, outputs);
    ASSERT_EQ(screens.screens().size(), 1u);
    const int second = compositor.addOutput("B", {2560, 1440}, 2);
    EXPECT_TRUE(soon([&] { return screens.screens().size() == 2; }));
    EXPECT_EQ(screens.screens().back().pixelRatio, 2);
    compositor.withdraw(first);
    EXPECT_TRUE(soon([&] { return screens.screens().size() == 1; }));
    EXPECT_EQ(screens.screens().front().name, QStringLiteral("B"));
    const auto last = screens.screens();
    compositor.withdraw(second);
    EXPECT_TRUE(soon([&] {
        connection.roundTrip();
        return outputs.all().empty();
    }));
    EXPECT_EQ(screens.screens(), last) << "a toast always has a screen";
}

TEST_F(WaylandPartsTest, aSessionThatNeverHadAnOutputHasAScreenAllTheSame) {
    WaylandConnection connection;
    WaylandOutputs outputs(connection);
    WaylandScreens screens(connection, outputs);
    ASSERT_EQ(screens.screens().size(), 1u);
    EXPECT_FALSE(screens.screens().front().pixelFrame.isEmpty());
}

TEST_F(WaylandPartsTest, aSpaceThatCountsPixelsHasTheWholeRatioItsWindowsAreDrawnAt) {
    compositor.offer(zxdg_output_manager_v1_interface, 3);
    compositor.addOutput("A", {3840, 2160}, 2, {3840, 2160});
    compositor.addOutput("B", {3840, 2160}, 2, {2560, 1440});
    WaylandConnection connection;
    WaylandOutputs outputs(connection);
    WaylandScreens screens(connection, outputs);
    const auto all = screens.screens();
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0].pixelRatio, 2);
    EXPECT_EQ(all[1].pixelRatio, 1.5);
}

struct DataControl {
    const wl_interface& manager;
    const wl_interface& device;
    const wl_interface& offer;
};

class WaylandClipboardTest : public WaylandPartsTest, public testing::WithParamInterface<bool> {
protected:
    static DataControl protocol() {
        return GetParam()
                   ? DataControl{ext_data_control_manager_v1_interface, ext_data_control_device_v1_interface,
                                 ext_data_control_offer_v1_interface}
                   : DataControl{zwlr_data_control_manager_v1_interface,
                                 zwlr_data_control_device_v1_interface, zwlr_data_control_offer_v1_interface};
    }
    WaylandClipboardTest() {
        compositor.offer(protocol().manager, 1);
        seat = compositor.offer(wl_seat_interface, 1);
    }
    void copy(const std::string& bytes) {
        compositor.copy(protocol().device, protocol().offer, {"text/plain", "image/png"}, bytes);
    }

    int seat;
};

INSTANTIATE_TEST_SUITE_P(, WaylandClipboardTest, testing::Bool(),
                         [](const auto& run) { return run.param ? "ext" : "wlr"; });

TEST_P(WaylandClipboardTest, countsAndReadsByEitherProtocol) {
    WaylandConnection connection;
    QByteArray read;
    WaylandPasteboard pasteboard(connection, WaylandClipboard::make(connection), [&](const QByteArray& file) {
        read = file;
        return QImage(2, 2, QImage::Format_RGB32);
    });
    EXPECT_EQ(pasteboard.changeCount(), 0);
    EXPECT_TRUE(pasteboard.readImage().isNull());
    copy("one");
    EXPECT_EQ(pasteboard.changeCount(), 1);
    EXPECT_FALSE(pasteboard.readImage().isNull());
    EXPECT_EQ(read, "one");
    copy("two");
    copy("three");
    EXPECT_EQ(pasteboard.changeCount(), 3);
    pasteboard.readImage();
    EXPECT_EQ(read, "three");
    EXPECT_EQ(compositor.count(protocol().offer), 1) << "offers that are past are given back";
}

TEST_P(WaylandClipboardTest, wordsThatAWindowOfOursCopiedDoNotHideAnotherProgramsPicture) {
    QGuiApplication::clipboard()->setText(QStringLiteral("words"));
    WaylandConnection connection;
    WaylandPasteboard pasteboard(connection, WaylandClipboard::make(connection),
                                 [](const QByteArray&) { return QImage(2, 2, QImage::Format_RGB32); });
    pasteboard.changeCount();
    copy("a picture");
    EXPECT_FALSE(pasteboard.readImage().isNull());
}

TEST_P(WaylandClipboardTest, aSeatThatGoesGivesWayToTheNextWithoutARace) {
    WaylandConnection connection;
    connection.listen();
    const auto clipboard = WaylandClipboard::make(connection);
    ASSERT_TRUE(connection.roundTrip());
    // The seat's end is told before its name is withdrawn.
    compositor.sendToAll(protocol().device, deviceFinished);
    EXPECT_TRUE(soon([&] { return compositor.count(protocol().device) == 0; }));
    const double before = usedSeconds();
    QTest::qWait(200);
    EXPECT_EQ(compositor.count(protocol().device), 0) << "the dying seat is not asked again";
    EXPECT_LT(usedSeconds() - before, 0.05);
    compositor.withdraw(seat);
    compositor.offer(wl_seat_interface, 1);
    EXPECT_TRUE(soon([&] { return compositor.count(protocol().device) == 1; }));
    connection.roundTrip();
    const auto count = clipboard->changes();
    copy("again");
    connection.roundTrip();
    EXPECT_EQ(clipboard->changes(), count + 1);
}

TEST_F(WaylandPartsTest, withoutADataControlProtocolThereIsNoSuchClipboard) {
    WaylandConnection connection;
    EXPECT_EQ(WaylandClipboard::make(connection), nullptr);
}

TEST_F(WaylandPartsTest, aCompositorThatIsSilentIsNotWaitedForLongerThanSaid) {
    WaylandConnection connection;
    ASSERT_TRUE(connection.isValid());
    const ToyCompositor::Silence silence(compositor);
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(connection.roundTrip(200));
    EXPECT_LT(timer.elapsed(), 2000);
    EXPECT_FALSE(WaylandConnection(200).isValid()) << "one that does not answer is none";
    EXPECT_LT(timer.elapsed(), 3000);
}

class WaylandToastPartsTest : public WaylandPartsTest {
protected:
    WaylandToastPartsTest() {
        compositor.offer(wl_compositor_interface, 4);
        compositor.offer(wl_seat_interface, 3);
        compositor.offer(zwlr_layer_shell_v1_interface, 4);
        compositor.addOutput("A", {1280, 800});
    }

    int surfaces() {
        connection->roundTrip();
        return compositor.count(zwlr_layer_surface_v1_interface);
    }
    void open() {
        connection.emplace();
        connection->listen();
        outputs.emplace(*connection);
        screens.emplace(*connection, *outputs);
        panels.emplace(*connection, *outputs, queue, nullptr);
        manager.emplace(ToastServices{queue, *panels, *screens, appearance, {}});
    }

    std::optional<WaylandConnection> connection;
    std::optional<WaylandOutputs> outputs;
    std::optional<WaylandScreens> screens;
    ManualMainQueue queue;
    FixedAppearance appearance;
    std::optional<WaylandToastPanels> panels;
    std::optional<ToastManager> manager;
};

TEST_F(WaylandToastPartsTest, aToastWhoseOutputGoesComesBackAndEndsInItsTime) {
    open();
    manager->show(QStringLiteral("Copied"), QStringLiteral("photo"), true);
    EXPECT_EQ(surfaces(), 1);
    compositor.sendToAll(zwlr_layer_surface_v1_interface, layerSurfaceClosed);
    EXPECT_TRUE(soon([&] { return surfaces() == 0; }));
    queue.advance(0.01);
    EXPECT_EQ(surfaces(), 1) << "it stands somewhere else";
    queue.advance(3);
    EXPECT_FALSE(manager->isShowing());
    EXPECT_EQ(surfaces(), 0);
}

TEST_F(WaylandToastPartsTest, aCompositorThatAlwaysTakesItAwayIsNotContestedWithForEver) {
    open();
    manager->show(QStringLiteral("Copied"), QStringLiteral("photo"), true);
    int comings = 0;
    for (int round = 0; round < 10 && surfaces() == 1; ++round) {
        ++comings;
        compositor.sendToAll(zwlr_layer_surface_v1_interface, layerSurfaceClosed);
        EXPECT_TRUE(soon([&] { return surfaces() == 0; }));
        queue.advance(0.01);
    }
    EXPECT_EQ(comings, 4);
    queue.advance(3);
    EXPECT_FALSE(manager->isShowing());
}

TEST_F(WaylandToastPartsTest, withdrawnItHasNoSurfaceUntilItIsRestored) {
    open();
    manager->show(QStringLiteral("Copied"), QStringLiteral("photo"), true);
    panels->withdraw();
    EXPECT_EQ(surfaces(), 0);
    panels->restore();
    EXPECT_EQ(surfaces(), 1);
    panels->withdraw();
    queue.advance(3);
    EXPECT_FALSE(manager->isShowing()) << "its time passes meanwhile";
    panels->restore();
    EXPECT_EQ(surfaces(), 0);
}

} // namespace
} // namespace framora
