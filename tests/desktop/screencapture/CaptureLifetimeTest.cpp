#include "desktop/screencapture/CaptureDesktop.h"

#include <QRandomGenerator>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <xcb/xcb.h>

namespace framora {
namespace {

const QStringList kArea{QStringLiteral("-i"), QStringLiteral("-c"), QStringLiteral("-x")};

DesktopOptions ofSize(QSize size) {
    DesktopOptions options;
    options.size = size;
    return options;
}

constexpr QSize kLarge{3840, 2160};

/// A wallpaper of `kLarge` that takes its time to become a PNG file.
QImage showNoise(CaptureDesktop& capture) {
    QImage noise(kLarge, QImage::Format_RGB32);
    QRandomGenerator random(3);
    for (int y = 0; y < noise.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(noise.scanLine(y));
        for (int x = 0; x < noise.width(); ++x)
            row[x] = 0xff000000U | random.generate();
    }
    capture.display().setWallpaper(noise);
    EXPECT_TRUE(VirtualDesktop::waitFor([&] {
        return capture.display().pixelAt({3000, 2000}) == noise.pixelColor(3000, 2000);
    }));
    return noise;
}

class CaptureLifetimeTest : public testing::Test {
protected:
    void dragOne(CaptureDesktop& capture) {
        ChildProcess* tool = capture.open(kArea);
        ASSERT_TRUE(tool);
        capture.display().drag({100, 100}, {300, 250});
        ASSERT_EQ(CaptureDesktop::exitCodeOf(*tool), 0);
    }
};

TEST_F(CaptureLifetimeTest, thePictureOutlivesTheToolUntilAnotherOwnerTakesOver) {
    CaptureDesktop capture;
    const QImage wallpaper = capture.paperTheWall();
    dragOne(capture);
    EXPECT_EQ(capture.toolProcesses(), 1);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(samePixels(capture.desktop().clipboardImage(), wallpaper.copy(100, 100, 200, 150)));
    const QStringList targets = capture.desktop().clipboardTargets();
    for (const char* target : {"TARGETS", "TIMESTAMP", "MULTIPLE", "SAVE_TARGETS", "image/png"})
        EXPECT_TRUE(targets.contains(QLatin1String(target))) << target;
    const QByteArray other = capture.fillClipboard();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return capture.toolProcesses() == 0; }));
    EXPECT_EQ(capture.desktop().clipboard(), other);
}

TEST_F(CaptureLifetimeTest, theServerProcessIsSmallAndHoldsNoFileOfItsParents) {
    CaptureDesktop capture(ofSize({2560, 1440}));
    dragOne(capture);
    ASSERT_EQ(capture.toolProcesses(), 1);
    for (const qint64 pid : capture.desktop().processes())
        if (ChildProcess::nameOf(pid).startsWith(QStringLiteral("framora-screenc"))) {
            EXPECT_LE(ChildProcess::openDescriptors(pid), 5) << "three standard ones and the display";
            EXPECT_LT(ChildProcess::residentKilobytes(pid), 12 * 1024);
        }
}

TEST_F(CaptureLifetimeTest, aLargePictureArrivesWholeInParts) {
    CaptureDesktop capture(ofSize(kLarge));
    const QImage noise = showNoise(capture);
    ChildProcess* tool = capture.open(kArea);
    ASSERT_TRUE(tool);
    capture.display().drag({0, 0}, {3839, 2159});
    ASSERT_EQ(CaptureDesktop::exitCodeOf(*tool), 0);
    const QByteArray png = capture.desktop().clipboard();
    EXPECT_GT(png.size(), 20 << 20);
    EXPECT_TRUE(samePixels(QImage::fromData(png, "PNG"), noise));
}

TEST_F(CaptureLifetimeTest, aKilledToolLeavesNothingOnScreen) {
    CaptureDesktop capture;
    capture.paperTheWall();
    const QByteArray before = capture.fillClipboard();
    const QImage screen = capture.settledScreen();
    for (const int signal : {SIGKILL, SIGTERM}) {
        ChildProcess* tool = capture.open(kArea);
        ASSERT_TRUE(tool);
        capture.display().moveTo({100, 100});
        capture.display().press();
        capture.display().moveTo({400, 300});
        ::kill(static_cast<pid_t>(tool->pid()), signal);
        ASSERT_TRUE(tool->waitForExit());
        capture.display().release();
        EXPECT_TRUE(
            VirtualDesktop::waitFor([&] { return samePixels(capture.display().screenshot(), screen); }));
        EXPECT_EQ(capture.desktop().clipboard(), before);
        EXPECT_EQ(capture.toolProcesses(), 0);
    }
    // Pointer and keyboard are free again: the next capture works.
    dragOne(capture);
}

TEST_F(CaptureLifetimeTest, aToolThatIsToldToEndKeepsWhatTheUserHasChosen) {
    CaptureDesktop capture(ofSize(kLarge));
    const QImage noise = showNoise(capture);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        // On a busy machine a tool may be done before it is told.
        bool isTold = false;
        for (int attempt = 0; attempt < 5 && !isTold; ++attempt) {
            const QByteArray before = capture.fillClipboard();
            ChildProcess* tool = capture.open(kArea);
            ASSERT_TRUE(tool);
            capture.display().drag({0, 0}, {3839, 2159});
            // The overlay goes first, then the picture is encoded.
            ASSERT_TRUE(VirtualDesktop::waitFor([&] { return !capture.overlayIsUp(); }));
            isTold = tool->isRunning();
            if (isTold)
                ::kill(static_cast<pid_t>(tool->pid()), signal);
            EXPECT_EQ(CaptureDesktop::exitCodeOf(*tool), 0) << signal;
            EXPECT_NE(capture.desktop().clipboard(), before);
        }
        EXPECT_TRUE(isTold) << signal;
    }
    EXPECT_TRUE(samePixels(capture.desktop().clipboardImage(), noise));
    // The process that is left behind is a user's like any other again.
    const auto serves = [](qint64 pid) {
        return ChildProcess::nameOf(pid).startsWith(QStringLiteral("framora-screenc"));
    };
    for (const qint64 pid : capture.desktop().processes())
        if (serves(pid))
            ::kill(static_cast<pid_t>(pid), SIGTERM);
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return capture.toolProcesses() == 0; }));
}

TEST_F(CaptureLifetimeTest, aProgramThatEndsBeforeTheOverlayIsUpTakesNothingAlong) {
    CaptureDesktop capture;
    const QImage wallpaper = capture.paperTheWall();
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    close(ends[0]);
    fcntl(ends[1], F_SETFD, 0);
    capture.desktop().setEnvironmentVariable(QStringLiteral("FRAMORA_READY_FD"), QString::number(ends[1]));
    dragOne(capture);
    close(ends[1]);
    EXPECT_TRUE(samePixels(capture.desktop().clipboardImage(), wallpaper.copy(100, 100, 200, 150)));
}

TEST_F(CaptureLifetimeTest, aRefusedGrabEndsCleanly) {
    CaptureDesktop capture;
    capture.paperTheWall();
    const QByteArray before = capture.fillClipboard();
    const QImage screen = capture.settledScreen();
    xcb_connection_t* c = capture.display().connection();
    const xcb_window_t root = capture.display().root();
    for (const bool keyboard : {false, true}) {
        if (keyboard)
            free(xcb_grab_keyboard_reply(c, xcb_grab_keyboard(c, 0, root, XCB_CURRENT_TIME, 1, 1), nullptr));
        else
            free(xcb_grab_pointer_reply(c, xcb_grab_pointer(c, 0, root, 0, 1, 1, 0, 0, XCB_CURRENT_TIME),
                                        nullptr));
        ChildProcess& tool = capture.launch(kArea);
        EXPECT_EQ(CaptureDesktop::exitCodeOf(tool), 3);
        EXPECT_TRUE(tool.output().contains("another program holds"));
        xcb_ungrab_keyboard(c, XCB_CURRENT_TIME);
        xcb_ungrab_pointer(c, XCB_CURRENT_TIME);
        xcb_flush(c);
        EXPECT_TRUE(samePixels(capture.display().screenshot(), screen));
        EXPECT_EQ(capture.desktop().clipboard(), before);
    }
}

TEST_F(CaptureLifetimeTest, aGrabThatIsGivenUpSoonIsWaitedFor) {
    CaptureDesktop capture;
    xcb_connection_t* c = capture.display().connection();
    free(xcb_grab_keyboard_reply(c, xcb_grab_keyboard(c, 0, capture.display().root(), XCB_CURRENT_TIME, 1, 1),
                                 nullptr));
    ChildProcess& tool = capture.launch(kArea);
    ASSERT_TRUE(VirtualDesktop::waitFor(
        [&] { return capture.display().selectionIsOwned("_FRAMORA_SCREENCAPTURE"); }));
    EXPECT_FALSE(capture.overlayIsUp());
    xcb_ungrab_keyboard(c, XCB_CURRENT_TIME);
    xcb_flush(c);
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return capture.overlayIsUp(); }));
    capture.display().key({"Escape"});
    EXPECT_EQ(CaptureDesktop::exitCodeOf(tool), 1);
}

TEST_F(CaptureLifetimeTest, aKeyThatComesUpWhileAGrabIsWaitedForCountsWhenPressedAgain) {
    CaptureDesktop capture;
    const QImage wallpaper = capture.paperTheWall();
    xcb_connection_t* c = capture.display().connection();
    capture.display().keyDown("Shift_L");
    free(xcb_grab_keyboard_reply(c, xcb_grab_keyboard(c, 0, capture.display().root(), XCB_CURRENT_TIME, 1, 1),
                                 nullptr));
    ChildProcess& tool = capture.launch(kArea);
    // It holds the pointer by now, and asks for the keyboard.
    ASSERT_TRUE(VirtualDesktop::waitFor([&] {
        auto* reply = xcb_grab_pointer_reply(
            c, xcb_grab_pointer(c, 0, capture.display().root(), 0, 1, 1, 0, 0, XCB_CURRENT_TIME), nullptr);
        const bool held = reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
        free(reply);
        if (!held) {
            xcb_ungrab_pointer(c, XCB_CURRENT_TIME);
            xcb_flush(c);
        }
        return held;
    }));
    capture.display().keyUp("Shift_L");
    xcb_ungrab_keyboard(c, XCB_CURRENT_TIME);
    xcb_flush(c);
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return capture.overlayIsUp(); }));
    capture.display().moveTo({100, 100});
    capture.display().press();
    capture.display().moveTo({200, 180});
    capture.display().keyDown("Shift_L");
    capture.display().moveTo({300, 184}); // wider only
    capture.display().moveTo({300, 400});
    capture.display().release();
    capture.display().keyUp("Shift_L");
    EXPECT_EQ(CaptureDesktop::exitCodeOf(tool), 0);
    EXPECT_TRUE(samePixels(capture.desktop().clipboardImage(), wallpaper.copy(100, 100, 200, 80)));
}

TEST_F(CaptureLifetimeTest, aSecondToolEndsAtOnceAndTheFirstGoesOn) {
    CaptureDesktop capture;
    const QImage wallpaper = capture.paperTheWall();
    ChildProcess* first = capture.open(kArea);
    ASSERT_TRUE(first);
    for (const char* mode : {"-i", "-w"}) {
        ChildProcess& second = capture.launch({QLatin1String(mode)});
        EXPECT_EQ(CaptureDesktop::exitCodeOf(second), 1);
    }
    capture.display().drag({100, 100}, {300, 250});
    EXPECT_EQ(CaptureDesktop::exitCodeOf(*first), 0);
    EXPECT_TRUE(samePixels(capture.desktop().clipboardImage(), wallpaper.copy(100, 100, 200, 150)));
    dragOne(capture); // and the clipboard's server does not count as an open capture
}

TEST_F(CaptureLifetimeTest, manyCapturesLeaveOneProcess) {
    CaptureDesktop capture;
    for (int i = 0; i < 5; ++i)
        dragOne(capture);
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return capture.toolProcesses() == 1; }));
    const int windows = capture.display().windowCount();
    for (int i = 0; i < 15; ++i)
        dragOne(capture);
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return capture.toolProcesses() == 1; }));
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return capture.display().windowCount() == windows; }));
}

TEST_F(CaptureLifetimeTest, theToolEndsWhenTheServerGoesAway) {
    auto capture = std::make_unique<CaptureDesktop>();
    dragOne(*capture);
    const auto processes = capture->desktop().processes();
    qint64 server = 0;
    qint64 keeper = 0;
    for (const qint64 pid : processes) {
        if (ChildProcess::nameOf(pid) == QStringLiteral("Xvfb"))
            server = pid;
        if (ChildProcess::nameOf(pid).startsWith(QStringLiteral("framora-screenc")))
            keeper = pid;
    }
    ASSERT_GT(server, 0);
    ASSERT_GT(keeper, 0);
    ChildProcess* tool = capture->open(kArea);
    ASSERT_TRUE(tool);
    ::kill(static_cast<pid_t>(server), SIGKILL);
    EXPECT_EQ(CaptureDesktop::exitCodeOf(*tool), 3);
    EXPECT_TRUE(VirtualDesktop::waitFor([&] {
        const QString name = ChildProcess::nameOf(keeper);
        return name.isEmpty() || ChildProcess::residentKilobytes(keeper) == 0;
    }));
}

TEST_F(CaptureLifetimeTest, badUsageAndAMissingDisplayAreSaidAndNothingElseHappens) {
    CaptureDesktop capture;
    const QByteArray before = capture.fillClipboard();
    for (const QStringList& arguments : {QStringList{}, QStringList{QStringLiteral("-c")},
                                         QStringList{QStringLiteral("-i"), QStringLiteral("-w")},
                                         QStringList{QStringLiteral("-i"), QStringLiteral("-z")}}) {
        ChildProcess& tool = capture.launch(arguments);
        EXPECT_EQ(CaptureDesktop::exitCodeOf(tool), 2);
        EXPECT_TRUE(tool.output().startsWith("usage: framora-screencapture"));
    }
    EXPECT_EQ(capture.desktop().clipboard(), before);
    capture.desktop().setEnvironmentVariable(QStringLiteral("DISPLAY"), QStringLiteral(":987"));
    ChildProcess& tool = capture.launch(kArea);
    EXPECT_EQ(CaptureDesktop::exitCodeOf(tool), 3);
    EXPECT_EQ(tool.output().count('\n'), 1);
}

TEST_F(CaptureLifetimeTest, worksWithoutSharedMemoryAndOtherExtensions) {
    for (const char* extension :
         {"MIT-SHM", "Composite", "RANDR", "RENDER", "DAMAGE", "SHAPE", "XKEYBOARD"}) {
        DesktopOptions options;
        options.windowManager = WindowManager::none;
        options.disabledExtensions = QStringList{QLatin1String(extension)};
        SCOPED_TRACE(extension);
        std::unique_ptr<CaptureDesktop> capture;
        try {
            capture = std::make_unique<CaptureDesktop>(options);
        } catch (const std::exception&) {
            continue; // a server that cannot do without it
        }
        const QImage wallpaper = capture->paperTheWall();
        dragOne(*capture);
        EXPECT_TRUE(samePixels(capture->desktop().clipboardImage(), wallpaper.copy(100, 100, 200, 150)));
        const auto window = capture->show({.geometry = {200, 200, 300, 200}, .seed = 3});
        ChildProcess* tool = capture->open({QStringLiteral("-w")});
        ASSERT_TRUE(tool);
        capture->display().click({300, 300});
        EXPECT_EQ(CaptureDesktop::exitCodeOf(*tool), 0);
        EXPECT_TRUE(samePixels(capture->desktop().clipboardImage(), window->picture()));
    }
}

} // namespace
} // namespace framora
