#include "desktop/portal/PortalDesktop.h"
#include "desktop/portal/ScreenshotPortalDouble.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <QUrl>

#include <csignal>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace framora {
namespace {

using Code = ScreenshotPortalDouble::Code;

const QStringList area = {QStringLiteral("-i"), QStringLiteral("-c"), QStringLiteral("-x")};
const QStringList window = {QStringLiteral("-w"), QStringLiteral("-c"), QStringLiteral("-x")};

enum Exit { Done = 0, Cancelled = 1, Failed = 3 };

/// The capture tool against a portal that is the test's own. At the end nothing may be left.
class PortalCaptureTest : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(m_desktop.leftovers(), QStringList()); }

    /// Runs the tool until the portal has its request.
    ChildProcess& launchAndAsk(const QStringList& arguments = area) {
        const std::size_t before = m_portal.calls.size();
        ChildProcess& tool = m_desktop.launch(arguments);
        EXPECT_TRUE(DesktopSession::waitFor([&] { return m_portal.calls.size() > before; }));
        return tool;
    }
    /// As above, until the user would see the portal's dialog.
    ChildProcess& launchToDialog(const QStringList& arguments = area) {
        ChildProcess& tool = launchAndAsk(arguments);
        EXPECT_TRUE(DesktopSession::waitFor([&] { return m_desktop.isReady(); }));
        return tool;
    }
    static int exitCodeOf(ChildProcess& tool) {
        EXPECT_TRUE(DesktopSession::waitFor([&] { return !tool.isRunning(); }));
        return tool.exitCode();
    }
    QImage handed() const { return QImage::fromData(m_desktop.handedPicture(), "PNG"); }
    static int lines(ChildProcess& tool) { return int(tool.output().count('\n')); }

    PortalDesktop m_desktop;
    ScreenshotPortalDouble m_portal{m_desktop.busAddress()};
};

TEST_F(PortalCaptureTest, TakesThePortalsPicturePixelForPixelAndRemovesItsFile) {
    const QImage picture = distinctPicture({301, 203}, true);
    ChildProcess& tool = launchToDialog();
    m_portal.respond({Code::done, m_desktop.leavePicture(picture)});
    EXPECT_EQ(exitCodeOf(tool), Done);
    EXPECT_EQ(handed().convertToFormat(QImage::Format_ARGB32), picture);
    EXPECT_EQ(tool.output(), QByteArray());
    EXPECT_TRUE(QDir(m_desktop.picturesPath()).isEmpty());
}

TEST_F(PortalCaptureTest, AsksForTheInteractiveDialogInBothModes) {
    for (const QStringList& arguments : {area, window}) {
        ChildProcess& tool = launchAndAsk(arguments);
        const auto& call = m_portal.calls.back();
        EXPECT_EQ(call.options.value(QStringLiteral("interactive")), true);
        EXPECT_FALSE(call.options.value(QStringLiteral("handle_token")).toString().isEmpty());
        EXPECT_FALSE(call.options.contains(QStringLiteral("target")));
        EXPECT_FALSE(call.options.contains(QStringLiteral("activation_token")));
        EXPECT_EQ(call.parentWindow, QString());
        m_portal.respond({Code::cancelled, {}});
        EXPECT_EQ(exitCodeOf(tool), Cancelled);
    }
}

TEST_F(PortalCaptureTest, PassesTheParentWindowAndTheActivationToken) {
    m_desktop.setEnvironmentVariable(QStringLiteral("XDG_ACTIVATION_TOKEN"), QStringLiteral("token-7"));
    ChildProcess& tool =
        launchAndAsk(QStringList(area) << QStringLiteral("--parent") << QStringLiteral("wayland:handle-3"));
    EXPECT_EQ(m_portal.calls.back().parentWindow, QStringLiteral("wayland:handle-3"));
    EXPECT_EQ(m_portal.calls.back().options.value(QStringLiteral("activation_token")),
              QStringLiteral("token-7"));
    m_portal.respond({Code::cancelled, {}});
    EXPECT_EQ(exitCodeOf(tool), Cancelled);
}

TEST_F(PortalCaptureTest, PassesTheTargetThatAVersionThreePortalAdvertises) {
    m_portal.version = 3;
    m_portal.availableTargets = 1 | 2 | 4;
    for (const auto& [arguments, target] : {std::pair(area, 4U), std::pair(window, 2U)}) {
        ChildProcess& tool = launchAndAsk(arguments);
        EXPECT_EQ(m_portal.calls.back().options.value(QStringLiteral("target")), target);
        m_portal.respond({Code::cancelled, {}});
        EXPECT_EQ(exitCodeOf(tool), Cancelled);
    }
}

TEST_F(PortalCaptureTest, PassesNoTargetThatIsNotAdvertised) {
    m_portal.version = 3;
    m_portal.availableTargets = 4;
    ChildProcess& tool = launchAndAsk(window);
    EXPECT_FALSE(m_portal.calls.back().options.contains(QStringLiteral("target")));
    m_portal.respond({Code::cancelled, {}});
    EXPECT_EQ(exitCodeOf(tool), Cancelled);
}

TEST_F(PortalCaptureTest, AsksAgainWithoutTheTargetWhenItIsRefused) {
    m_portal.version = 3;
    m_portal.availableTargets = 4;
    m_portal.refusesTarget = true;
    const QImage picture = distinctPicture({40, 30});
    m_portal.immediate = {Code::done, m_desktop.leavePicture(picture)};
    ChildProcess& tool = m_desktop.launch(area);
    EXPECT_EQ(exitCodeOf(tool), Done);
    ASSERT_EQ(m_portal.calls.size(), 2U);
    EXPECT_FALSE(m_portal.calls.back().options.contains(QStringLiteral("target")));
    EXPECT_EQ(handed().convertToFormat(QImage::Format_RGB32), picture);
}

TEST_F(PortalCaptureTest, HearsAnAnswerThatComesBeforeTheReply) {
    const QImage picture = distinctPicture({64, 48});
    m_portal.immediate = {Code::done, m_desktop.leavePicture(picture)};
    ChildProcess& tool = m_desktop.launch(area);
    EXPECT_EQ(exitCodeOf(tool), Done);
    EXPECT_TRUE(m_desktop.isReady());
    EXPECT_EQ(handed().size(), picture.size());
}

TEST_F(PortalCaptureTest, HearsAPortalThatChoosesTheRequestsPathItself) {
    m_portal.predictableHandles = false;
    ChildProcess& tool = launchToDialog();
    m_portal.respond({Code::done, m_desktop.leavePicture(distinctPicture({64, 48}))});
    EXPECT_EQ(exitCodeOf(tool), Done);
    EXPECT_EQ(handed().size(), QSize(64, 48));
}

TEST_F(PortalCaptureTest, ClosingTheDialogIsCancelling) {
    ChildProcess& tool = launchToDialog();
    m_portal.respond({Code::cancelled, {}});
    EXPECT_EQ(exitCodeOf(tool), Cancelled);
    EXPECT_EQ(m_desktop.handedPicture(), QByteArray());
    EXPECT_EQ(tool.output(), QByteArray());
}

TEST_F(PortalCaptureTest, FailsBeforeItIsReadyWhenADenialIsStored) {
    m_portal.immediate = {Code::other, {}};
    ChildProcess& tool = m_desktop.launch(area);
    EXPECT_EQ(exitCodeOf(tool), Failed);
    EXPECT_FALSE(m_desktop.isReady());
    EXPECT_EQ(lines(tool), 1) << tool.output().toStdString();
    EXPECT_TRUE(tool.output().contains("did not allow")) << tool.output().toStdString();
}

TEST_F(PortalCaptureTest, FailsAfterItWasReadyWhenTheUserDenies) {
    ChildProcess& tool = launchToDialog();
    m_portal.respond({Code::other, {}});
    EXPECT_EQ(exitCodeOf(tool), Failed);
    EXPECT_TRUE(m_desktop.isReady());
    EXPECT_EQ(lines(tool), 1) << tool.output().toStdString();
}

TEST_F(PortalCaptureTest, FailsWithOneLineWhenThePicturesFileIsGone) {
    ChildProcess& tool = launchToDialog();
    m_portal.respond(
        {Code::done, QUrl::fromLocalFile(m_desktop.picturesPath() + QStringLiteral("/gone.png")).toString()});
    EXPECT_EQ(exitCodeOf(tool), Failed);
    EXPECT_EQ(tool.output(), "framora-screencapture: the desktop's picture is gone: " +
                                 m_desktop.picturesPath().toUtf8() + "/gone.png\n");
    EXPECT_EQ(m_desktop.handedPicture(), QByteArray());
}

TEST_F(PortalCaptureTest, FailsAndLeavesTheUserTheFileWhenItIsNoPictureOrADamagedOne) {
    m_desktop.leavePicture(distinctPicture({90, 90}), QStringLiteral("whole.png"));
    QFile whole(m_desktop.picturesPath() + QStringLiteral("/whole.png"));
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    const QByteArray bytes = whole.readAll();
    ASSERT_TRUE(whole.remove());
    QByteArray damaged = bytes;
    damaged[damaged.size() / 2] = char(damaged[damaged.size() / 2] ^ 1);
    for (const QByteArray& contents :
         {QByteArray("GIF89a"), QByteArray(), bytes.left(bytes.size() - 20), damaged}) {
        ChildProcess& tool = launchToDialog();
        m_portal.respond({Code::done, m_desktop.leaveFile(contents, QStringLiteral("Screenshot.png"))});
        EXPECT_EQ(exitCodeOf(tool), Failed);
        EXPECT_EQ(lines(tool), 1) << tool.output().toStdString();
        const QString path = m_desktop.picturesPath() + QStringLiteral("/Screenshot.png");
        EXPECT_TRUE(tool.output().contains(path.toUtf8())) << "where it is";
        EXPECT_EQ(m_desktop.handedPicture(), QByteArray());
        EXPECT_TRUE(QFile::remove(path));
        EXPECT_EQ(m_desktop.leftovers(), QStringList());
    }
}

TEST_F(PortalCaptureTest, LeavesTheUserTheFileWhenThePictureCanGoNowhere) {
    // Neither a clipboard nor a program that takes it.
    ChildProcess& tool =
        m_desktop.start(QStringLiteral("env"), {QStringLiteral("-u"), QStringLiteral("FRAMORA_PICTURE_FD"),
                                                QStringLiteral(FRAMORA_SCREENCAPTURE), QStringLiteral("-i")});
    ASSERT_TRUE(DesktopSession::waitFor([&] { return !m_portal.calls.empty(); }));
    m_portal.respond(
        {Code::done, m_desktop.leavePicture(distinctPicture({64, 48}), QStringLiteral("kept.png"))});
    EXPECT_EQ(exitCodeOf(tool), Failed);
    EXPECT_EQ(lines(tool), 1) << tool.output().toStdString();
    EXPECT_TRUE(QFile::remove(m_desktop.picturesPath() + QStringLiteral("/kept.png")));
}

TEST_F(PortalCaptureTest, OpensNothingThatIsNoRegularFile) {
    const QString pipe = m_desktop.scratchPath() + QStringLiteral("/pipe");
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const QString kept = m_desktop.scratchPath() + QStringLiteral("/kept.png");
    ASSERT_TRUE(distinctPicture({20, 20}).save(kept));
    const QString link = m_desktop.scratchPath() + QStringLiteral("/link.png");
    ASSERT_TRUE(QFile::link(kept, link));
    for (const QString& uri :
         {QUrl::fromLocalFile(pipe).toString(), QUrl::fromLocalFile(link).toString(),
          QUrl::fromLocalFile(m_desktop.scratchPath()).toString(), QStringLiteral("file:///dev/zero"),
          QStringLiteral("http://127.0.0.1/a.png"), QStringLiteral("file://elsewhere") + kept,
          QStringLiteral("file://") + kept + QStringLiteral("%00"), QStringLiteral("a.png")}) {
        ChildProcess& tool = launchToDialog();
        m_portal.respond({Code::done, uri});
        EXPECT_EQ(exitCodeOf(tool), Failed) << uri.toStdString();
        EXPECT_EQ(lines(tool), 1) << tool.output().toStdString();
    }
    EXPECT_TRUE(QFile::exists(kept));
    EXPECT_TRUE(QFile::exists(pipe));
}

TEST_F(PortalCaptureTest, EndsAtOnceWhenThePortalIsRestartedInTheMiddle) {
    ChildProcess& tool = launchToDialog();
    m_portal.vanish();
    ScreenshotPortalDouble again(m_desktop.busAddress());
    EXPECT_EQ(exitCodeOf(tool), Failed);
    EXPECT_EQ(tool.output(), "framora-screencapture: the desktop's portal has gone\n");
    EXPECT_TRUE(again.calls.empty());
    // The next capture is the new portal's.
    ChildProcess& next = m_desktop.launch(area);
    ASSERT_TRUE(DesktopSession::waitFor([&] { return !again.calls.empty(); }));
    again.respond({Code::done, m_desktop.leavePicture(distinctPicture({64, 48}))});
    EXPECT_EQ(exitCodeOf(next), Done);
}

TEST_F(PortalCaptureTest, FailsSoonWhenThePortalDoesNotAnswerCalls) {
    m_portal.repliesToCalls = false;
    ChildProcess& tool = m_desktop.launch(area);
    EXPECT_EQ(exitCodeOf(tool), Failed);
    EXPECT_FALSE(m_desktop.isReady());
    EXPECT_EQ(tool.output(), "framora-screencapture: the desktop's portal does not answer\n");
}

TEST_F(PortalCaptureTest, ClosesItsRequestWhenItIsAskedToEnd) {
    ChildProcess& tool = launchToDialog();
    ASSERT_EQ(::kill(pid_t(tool.pid()), SIGTERM), 0);
    EXPECT_EQ(exitCodeOf(tool), Cancelled);
    EXPECT_TRUE(m_portal.calls.back().closed);
}

TEST_F(PortalCaptureTest, RunsTwiceInARowWithRequestsOfTheirOwn) {
    for (const int side : {50, 60}) {
        ChildProcess& tool = launchToDialog();
        m_portal.respond({Code::done, m_desktop.leavePicture(distinctPicture({side, side}))});
        EXPECT_EQ(exitCodeOf(tool), Done);
        EXPECT_EQ(handed().size(), QSize(side, side));
        EXPECT_EQ(m_desktop.leftovers(), QStringList());
    }
    EXPECT_NE(m_portal.calls[0].options.value(QStringLiteral("handle_token")),
              m_portal.calls[1].options.value(QStringLiteral("handle_token")));
}

TEST_F(PortalCaptureTest, TakesNoAnswerFromAnotherProgram) {
    ChildProcess& tool = launchToDialog();
    {
        // Not the portal's owner, though it knows the request's path.
        const QString name = QStringLiteral("intruder");
        auto bus = QDBusConnection::connectToBus(m_desktop.busAddress(), name);
        const auto& call = m_portal.calls.back();
        QDBusMessage signal = QDBusMessage::createTargetedSignal(
            call.sender, call.handle, QStringLiteral("org.freedesktop.portal.Request"),
            QStringLiteral("Response"));
        signal << 1U << QVariantMap();
        ASSERT_TRUE(bus.send(signal));
        // The bus has passed it on when it answers what was asked after it.
        ASSERT_TRUE(bus.interface()->isServiceRegistered(QStringLiteral("org.freedesktop.DBus")));
        QDBusConnection::disconnectFromBus(name);
    }
    m_portal.respond({Code::done, m_desktop.leavePicture(distinctPicture({64, 48}))});
    EXPECT_EQ(exitCodeOf(tool), Done);
}

TEST_F(PortalCaptureTest, AsksForThePermissionByAPictureThatNobodySees) {
    ChildProcess& tool = launchToDialog(
        {QStringLiteral("--ask-permission"), QStringLiteral("--parent"), QStringLiteral("x11:1f")});
    EXPECT_EQ(m_portal.calls.back().options.value(QStringLiteral("interactive")), false);
    EXPECT_EQ(m_portal.calls.back().parentWindow, QStringLiteral("x11:1f"));
    m_portal.respond({Code::done, m_desktop.leavePicture(distinctPicture({64, 48}))});
    EXPECT_EQ(exitCodeOf(tool), Done);
    EXPECT_EQ(m_desktop.handedPicture(), QByteArray());
}

TEST_F(PortalCaptureTest, TellsThatThePermissionWasNotGiven) {
    for (const auto& [code, exit] : {std::pair(Code::cancelled, Cancelled), std::pair(Code::other, Failed)}) {
        ChildProcess& tool = launchToDialog({QStringLiteral("--ask-permission")});
        m_portal.respond({code, {}});
        EXPECT_EQ(exitCodeOf(tool), exit);
    }
}

TEST_F(PortalCaptureTest, FailsAtOnceWhereThePortalTakesNoPictures) {
    m_portal.hasScreenshots = false;
    ChildProcess& tool = m_desktop.launch(area);
    EXPECT_EQ(exitCodeOf(tool), Failed);
    EXPECT_FALSE(m_desktop.isReady());
    EXPECT_EQ(lines(tool), 1) << tool.output().toStdString();
}

TEST(WithoutPortal, FailsWithOneLineWithoutASessionBus) {
    PortalDesktop desktop(false);
    ChildProcess& tool = desktop.launch(area);
    ASSERT_TRUE(DesktopSession::waitFor([&] { return !tool.isRunning(); }));
    EXPECT_EQ(tool.exitCode(), Failed);
    EXPECT_EQ(tool.output().count('\n'), 1) << tool.output().toStdString();
    EXPECT_FALSE(desktop.isReady());
    EXPECT_EQ(desktop.leftovers(), QStringList());
}

TEST(WithoutPortal, FailsWithOneLineOnABusWithoutAPortal) {
    PortalDesktop desktop;
    ChildProcess& tool = desktop.launch(window);
    ASSERT_TRUE(DesktopSession::waitFor([&] { return !tool.isRunning(); }));
    EXPECT_EQ(tool.exitCode(), Failed);
    EXPECT_EQ(tool.output().count('\n'), 1) << tool.output().toStdString();
    EXPECT_FALSE(desktop.isReady());
    EXPECT_EQ(desktop.leftovers(), QStringList());
}

} // namespace
} // namespace framora
