#include "platform/desktop/ProcessCaptureTool.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>
#include <vector>

namespace framora {
namespace {

/// Numbers of the files that this process has open.
QStringList openFiles() {
    return QDir(QStringLiteral("/proc/self/fd"))
        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System);
}

/// The tool is a shell that runs what the test says.
class ProcessCaptureToolTest : public testing::Test {
protected:
    static QStringList script(const QString& text) { return {QStringLiteral("-c"), text}; }

    CommandGate gate;
    std::vector<bool> told;
    QList<QByteArray> pictures;
    ProcessCaptureTool::Events events{[this](bool taken) { told.push_back(taken); },
                                      [this](const QByteArray& png) { pictures.append(png); }};
    ProcessCaptureTool shell{gate, QStringLiteral("/bin/sh"), events};
};

TEST_F(ProcessCaptureToolTest, tellsWhenTheScreenIsTakenAndWhenItIsFree) {
    ProcessCaptureTool tool(gate, QStringLiteral("/bin/true"), events);
    ASSERT_TRUE(tool.launch({}));
    EXPECT_EQ(told, std::vector<bool>{true});
    tool.waitUntilExit();
    EXPECT_EQ(told, (std::vector<bool>{true, false}));
}

TEST_F(ProcessCaptureToolTest, aToolThatCannotBeLaunchedLeavesTheScreenFree) {
    ProcessCaptureTool tool(gate, QStringLiteral("/nowhere/framora-screencapture"), events);
    EXPECT_FALSE(tool.launch({}));
    EXPECT_EQ(told, (std::vector<bool>{true, false}));
    EXPECT_TRUE(gate.isOpen());
}

TEST_F(ProcessCaptureToolTest, aToolWithoutAnyWayToTakePicturesCountsAsNotLaunched) {
    EXPECT_FALSE(shell.launch(script(QStringLiteral("exit 3"))));
    EXPECT_EQ(told, (std::vector<bool>{true, false}));
    EXPECT_TRUE(gate.isOpen());
    // And does not stand in the way of the next one.
    EXPECT_TRUE(shell.launch(script(QStringLiteral("exit 0"))));
    shell.waitUntilExit();
}

TEST_F(ProcessCaptureToolTest, aToolThatWasReadyMayEndAsItLikes) {
    EXPECT_TRUE(shell.launch(script(QStringLiteral("printf r >&$FRAMORA_READY_FD; exit 3"))));
    shell.waitUntilExit();
    EXPECT_EQ(told, (std::vector<bool>{true, false}));
}

TEST_F(ProcessCaptureToolTest, anyOtherEndBeforeItWasReadyIsTheUsersOrTheToolsOwn) {
    EXPECT_TRUE(shell.launch(script(QStringLiteral("exit 1"))));
    shell.waitUntilExit();
    EXPECT_TRUE(shell.launch(script(QStringLiteral("kill -9 $$"))));
    shell.waitUntilExit();
    EXPECT_EQ(told, (std::vector<bool>{true, false, true, false}));
}

TEST_F(ProcessCaptureToolTest, launchingReturnsAsSoonAsTheToolIsReady) {
    QTemporaryDir folder;
    const QString wish = folder.filePath(QStringLiteral("end"));
    ASSERT_TRUE(shell.launch(script(
        QStringLiteral("printf r >&$FRAMORA_READY_FD; while [ ! -e %1 ]; do sleep 0.01; done").arg(wish))));
    EXPECT_FALSE(gate.isOpen());
    EXPECT_EQ(told, std::vector<bool>{true});
    QFile end(wish);
    ASSERT_TRUE(end.open(QIODevice::WriteOnly));
    shell.waitUntilExit();
    EXPECT_TRUE(gate.isOpen());
}

TEST_F(ProcessCaptureToolTest, aToolThatNeverSaysThatItIsReadyIsWaitedForWithTheDesktopServed) {
    int turns = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++turns; });
    timer.start(5);
    EXPECT_TRUE(shell.launch(script(QStringLiteral("sleep 0.2"))));
    shell.waitUntilExit();
    EXPECT_GT(turns, 2);
}

TEST_F(ProcessCaptureToolTest, aToolThatHangsBeforeItIsReadyIsEnded) {
    ProcessCaptureTool::Events impatient = events;
    impatient.readyMilliseconds = 100;
    ProcessCaptureTool tool(gate, QStringLiteral("/bin/sh"), impatient);
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(tool.launch(script(QStringLiteral("exec sleep 20"))));
    EXPECT_LT(timer.elapsed(), 5000);
    EXPECT_EQ(told, (std::vector<bool>{true, false}));
    EXPECT_TRUE(gate.isOpen());
    // One that is ready may take its time.
    EXPECT_TRUE(tool.launch(script(QStringLiteral("printf r >&$FRAMORA_READY_FD; sleep 0.4"))));
    tool.waitUntilExit();
    EXPECT_TRUE(pictures.isEmpty());
}

TEST_F(ProcessCaptureToolTest, aToolThatClosesItsEndWithoutAWordIsStillWaitedFor) {
    EXPECT_TRUE(
        shell.launch(script(QStringLiteral("eval \"exec $FRAMORA_READY_FD>&-\"; sleep 0.1; exit 0"))));
    shell.waitUntilExit();
    EXPECT_EQ(told, (std::vector<bool>{true, false}));
}

TEST_F(ProcessCaptureToolTest, handsOverThePictureThatTheToolLeaves) {
    ASSERT_TRUE(shell.launch(
        script(QStringLiteral("printf r >&$FRAMORA_READY_FD; printf 'a picture' >&$FRAMORA_PICTURE_FD"))));
    shell.waitUntilExit();
    EXPECT_EQ(pictures, QList<QByteArray>{"a picture"});
    ASSERT_TRUE(shell.launch(script(QStringLiteral("true"))));
    shell.waitUntilExit();
    EXPECT_EQ(pictures.size(), 1) << "a run without a picture must not bring the last one's again";
}

TEST_F(ProcessCaptureToolTest, nothingElseThatIsStartedMeanwhileInheritsItsFiles) {
    QTemporaryDir folder;
    const QString wish = folder.filePath(QStringLiteral("end"));
    ASSERT_TRUE(shell.launch(script(
        QStringLiteral("printf r >&$FRAMORA_READY_FD; while [ ! -e %1 ]; do sleep 0.01; done").arg(wish))));
    QProcess other;
    other.start(QStringLiteral("/bin/sh"), script(QStringLiteral("readlink /proc/self/fd/*; exit 0")));
    ASSERT_TRUE(other.waitForFinished());
    const QByteArray files = other.readAllStandardOutput();
    EXPECT_FALSE(files.contains("framora-capture")) << files.constData();
    QFile end(wish);
    ASSERT_TRUE(end.open(QIODevice::WriteOnly));
    shell.waitUntilExit();
}

TEST_F(ProcessCaptureToolTest, theToolGetsTheTokenOfItsOwnCommandAndNoOlderOne) {
    qputenv("XDG_ACTIVATION_TOKEN", "of the program's start");
    QString token = QStringLiteral("of the command");
    ProcessCaptureTool::Events withToken = events;
    withToken.takeActivationToken = [&] { return std::exchange(token, {}); };
    ProcessCaptureTool tool(gate, QStringLiteral("/bin/sh"), withToken);
    const QString write = QStringLiteral("printf \"<$XDG_ACTIVATION_TOKEN>\" >&$FRAMORA_PICTURE_FD");
    for (int run = 0; run < 2; ++run) {
        ASSERT_TRUE(tool.launch(script(write)));
        tool.waitUntilExit();
    }
    qunsetenv("XDG_ACTIVATION_TOKEN");
    EXPECT_EQ(pictures, (QList<QByteArray>{"<of the command>", "<>"}));
}

TEST_F(ProcessCaptureToolTest, runsLeaveNoFileOpen) {
    ASSERT_TRUE(shell.launch(script(QStringLiteral("true"))));
    shell.waitUntilExit();
    const QStringList before = openFiles();
    for (int run = 0; run < 5; ++run) {
        shell.launch(script(run % 2 ? QStringLiteral("exit 3") : QStringLiteral("true")));
        if (!gate.isOpen())
            shell.waitUntilExit();
    }
    EXPECT_EQ(openFiles(), before);
}

} // namespace
} // namespace framora
