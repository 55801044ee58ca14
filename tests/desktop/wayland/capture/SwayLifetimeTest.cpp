#include "desktop/wayland/capture/SwayCapture.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace framora {
namespace {

/// A pipe of which the tool gets the writing end.
struct Pipe {
    Pipe() {
        if (pipe2(ends, O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
        fcntl(ends[0], F_SETFL, O_NONBLOCK);
    }
    ~Pipe() {
        close(ends[0]);
        closeWriting();
    }
    void closeWriting() {
        if (ends[1] >= 0)
            close(ends[1]);
        ends[1] = -1;
    }
    /// Bytes written so far; -1 for none while somebody may still write.
    int read() {
        char bytes[8];
        return static_cast<int>(::read(ends[0], bytes, sizeof bytes));
    }
    int ends[2];
};

ChildProcess& launchWith(SwayCapture& capture, const Pipe& pipe, const QString& mode) {
    capture.desktop().setEnvironmentVariable(QStringLiteral("FRAMORA_READY_FD"),
                                             QString::number(pipe.ends[1]));
    ChildProcess::Options options;
    options.inheritedDescriptor = pipe.ends[1];
    return capture.desktop().start(QStringLiteral(FRAMORA_SCREENCAPTURE), {mode}, options);
}

TEST(SwayLifetimeTest, theToolTellsOnceThatItIsReady) {
    SwayCapture capture;
    Pipe pipe;
    ChildProcess& tool = launchWith(capture, pipe, QStringLiteral("-i"));
    pipe.closeWriting();
    int count = -1;
    EXPECT_TRUE(SwayDesktop::waitFor([&] { return (count = pipe.read()) >= 0; }));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(pipe.read(), 0); // and lets go of the pipe
    EXPECT_TRUE(capture.screenChangesFrom(capture.background()));
    capture.drag({100, 100}, {200, 200});
    EXPECT_EQ(SwayCapture::exitCodeOf(tool), 0);
}

TEST(SwayLifetimeTest, whatIsNotPossibleIsNeverReady) {
    SwayCapture capture;
    capture.desktop().setEnvironmentVariable(QStringLiteral("SWAYSOCK"), QString());
    Pipe pipe;
    ChildProcess& tool = launchWith(capture, pipe, QStringLiteral("-w"));
    pipe.closeWriting();
    EXPECT_EQ(SwayCapture::exitCodeOf(tool), 3);
    EXPECT_EQ(pipe.read(), 0);
}

TEST(SwayLifetimeTest, aSecondToolEndsAtOnceAndTheFirstGoesOn) {
    SwayCapture capture;
    ChildProcess* first = capture.open();
    ASSERT_TRUE(first);
    for (const char* mode : {"-i", "-w"}) {
        ChildProcess& second = capture.launch({QLatin1String(mode)});
        EXPECT_EQ(SwayCapture::exitCodeOf(second), 1);
    }
    capture.drag({100, 100}, {300, 250});
    EXPECT_EQ(SwayCapture::exitCodeOf(*first), 0);
    // And the process that serves the clipboard does not count as an open capture.
    ChildProcess* next = capture.open();
    ASSERT_TRUE(next);
    capture.drag({100, 100}, {200, 200});
    EXPECT_EQ(SwayCapture::exitCodeOf(*next), 0);
    EXPECT_TRUE(
        samePicture(capture.desktop().clipboardImage(), capture.background().copy(100, 100, 100, 100)));
}

TEST(SwayLifetimeTest, aScreenThatChangesCancels) {
    SwayCapture capture({SwayOutput(), SwayOutput{{800, 600}, 1, {1280, 0}}});
    const QByteArray before = capture.fillClipboard();
    // sway keeps an output that is only in memory: that one goes away is seen on the scripted compositor.
    for (const char* change : {"output HEADLESS-2 scale 2", "output HEADLESS-2 transform 90",
                               "output HEADLESS-2 position 1300 0", "create_output"}) {
        ChildProcess* tool = capture.open();
        ASSERT_TRUE(tool);
        capture.desktop().command(QLatin1String(change));
        EXPECT_EQ(SwayCapture::exitCodeOf(*tool), 1) << change;
    }
    EXPECT_EQ(capture.desktop().clipboard(), before);
}

TEST(SwayLifetimeTest, anOutputThatIsSwitchedOffDoesNotKeepTheOtherFromBeingCaptured) {
    SwayCapture capture({SwayOutput(), SwayOutput{{800, 600}, 1, {1280, 0}}});
    capture.desktop().command(QStringLiteral("output HEADLESS-2 dpms off"));
    ChildProcess& tool = capture.launch({QStringLiteral("-i")});
    ASSERT_TRUE(capture.screenChangesFrom(capture.background()));
    capture.drag({100, 100}, {300, 250});
    EXPECT_EQ(SwayCapture::exitCodeOf(tool), 0);
    EXPECT_TRUE(
        samePicture(capture.desktop().clipboardImage(), capture.background().copy(100, 100, 200, 150)));
    capture.desktop().command(QStringLiteral("output HEADLESS-2 dpms on"));
}

TEST(SwayLifetimeTest, aCompositorThatDoesNotAnswerIsNotWaitedForLong) {
    SwayDesktop desktop;
    qint64 compositor = 0;
    for (const qint64 pid : desktop.processes())
        if (ChildProcess::nameOf(pid) == QStringLiteral("sway"))
            compositor = pid;
    ASSERT_GT(compositor, 0);
    ::kill(static_cast<pid_t>(compositor), SIGSTOP);
    ChildProcess& tool = desktop.start(QStringLiteral(FRAMORA_SCREENCAPTURE), {QStringLiteral("-i")});
    EXPECT_TRUE(tool.waitForExit(5000));
    EXPECT_EQ(tool.exitCode(), 3);
    EXPECT_EQ(tool.output().count('\n'), 1);
    ::kill(static_cast<pid_t>(compositor), SIGCONT);
}

TEST(SwayLifetimeTest, theToolEndsWhenTheCompositorGoesAway) {
    SwayDesktop desktop;
    const QImage before = desktop.screenshot();
    ChildProcess& tool = desktop.start(QStringLiteral(FRAMORA_SCREENCAPTURE), {QStringLiteral("-i")});
    ASSERT_TRUE(SwayDesktop::waitFor([&] {
        const QImage now = desktop.screenshot();
        return !now.isNull() && (now != before || !tool.isRunning());
    }));
    qint64 compositor = 0;
    for (const qint64 pid : desktop.processes())
        if (ChildProcess::nameOf(pid) == QStringLiteral("sway"))
            compositor = pid;
    ASSERT_GT(compositor, 0);
    ::kill(static_cast<pid_t>(compositor), SIGKILL);
    EXPECT_EQ(SwayCapture::exitCodeOf(tool), 3);
    EXPECT_TRUE(tool.output().contains("compositor is gone"));
}

TEST(SwayLifetimeTest, anEndedCaptureTakesItsOverlayAlong) {
    for (const int how : {SIGTERM, SIGKILL}) {
        SwayCapture capture;
        ChildProcess* tool = capture.open();
        ASSERT_TRUE(tool);
        ::kill(static_cast<pid_t>(tool->pid()), how);
        EXPECT_TRUE(tool->waitForExit());
        EXPECT_TRUE(
            SwayDesktop::waitFor([&] { return capture.desktop().screenshot() == capture.background(); }));
        // What it left in the runtime folder keeps nobody from the next one.
        ChildProcess* next = capture.open();
        ASSERT_TRUE(next);
        capture.input().key({"Escape"});
        EXPECT_EQ(SwayCapture::exitCodeOf(*next), 1);
    }
}

TEST(SwayLifetimeTest, anOpenOverlaySleeps) {
    SwayCapture capture;
    ChildProcess* tool = capture.open();
    ASSERT_TRUE(tool);
    capture.input().moveTo({300, 300});
    capture.desktop().settledScreenshot();
    const auto ticks = [&] {
        QFile stat(QStringLiteral("/proc/%1/stat").arg(tool->pid()));
        EXPECT_TRUE(stat.open(QIODevice::ReadOnly));
        const QByteArrayList fields = stat.readAll().split(' ');
        return fields[13].toInt() + fields[14].toInt();
    };
    const int before = ticks();
    for (int i = 0; i < 10; ++i)
        capture.desktop().screenshot(); // takes a while
    EXPECT_LE(ticks() - before, 2);
    capture.input().key({"Escape"});
    EXPECT_EQ(SwayCapture::exitCodeOf(*tool), 1);
}

} // namespace
} // namespace framora
