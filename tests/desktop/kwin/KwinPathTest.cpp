#include "desktop/kwin/CapturePermission.h"
#include "desktop/portal/PortalDesktop.h"
#include "desktop/portal/ScreenshotPortalDouble.h"
#include "desktop/support/FramoraUser.h"
#include "desktop/support/KwinDesktop.h"

#include <QDir>
#include <QElapsedTimer>

#include <csignal>
#include <gtest/gtest.h>

namespace framora {
namespace {

using Code = ScreenshotPortalDouble::Code;

/// The built program in a Plasma session that gives nobody pictures, from a command to what the user sees.
/// The portal, where there is one, is the test's.
class KwinPathTest : public testing::Test {
protected:
    KwinPathTest() {
        m_desktop.storeUnchangedSettings();
        QDir().mkpath(m_desktop.homePath() + QStringLiteral("/Pictures"));
        permitThisTest(m_desktop);
    }
    void TearDown() override {
        if (m_framora && m_framora->isRunning()) {
            ::kill(pid_t(m_framora->pid()), SIGTERM);
            EXPECT_TRUE(waitFor([&] { return !m_framora->isRunning(); }));
            EXPECT_EQ(m_framora->exitCode(), 0);
        }
        EXPECT_EQ(m_desktop.leftovers(), QStringList());
    }

    static bool waitFor(const std::function<bool()>& condition) { return DesktopSession::waitFor(condition); }
    static QString program() { return FramoraUser::program(QStringLiteral("framora")); }

    void launch() {
        m_framora = &m_desktop.start(program());
        ASSERT_TRUE(waitFor([&] { return m_desktop.serviceIsOnBus(QStringLiteral("org.framora.Framora")); }));
        m_empty = m_desktop.settledScreenshot();
    }
    void command(const char* option) {
        ChildProcess& asking = m_desktop.start(program(), {QString::fromLatin1(option)});
        EXPECT_TRUE(waitFor([&] { return !asking.isRunning(); }));
    }
    /// Something is shown and goes by itself, as a toast does. How long it took to come, in milliseconds.
    qint64 toastAfter(const char* option) {
        QElapsedTimer timer;
        timer.start();
        command(option);
        EXPECT_TRUE(waitFor([&] { return m_desktop.screenshot() != m_empty; }));
        const qint64 came = timer.elapsed();
        EXPECT_TRUE(waitFor([&] { return m_desktop.screenshot() == m_empty; }));
        return came;
    }

    KwinDesktop m_desktop{
        {.size = {1000, 700}, .accessibility = true, .portal = false, .everyoneMayCapture = false}};
    ChildProcess* m_framora = nullptr;
    QImage m_empty;
};

TEST_F(KwinPathTest, NothingThatTakesPicturesIsToldByAToast) {
    launch();
    for (const char* option : {"--capture-area", "--capture-window"})
        RecordProperty(option + 2, int(toastAfter(option)));
}

TEST_F(KwinPathTest, AStoredDenialIsToldByAToast) {
    ScreenshotPortalDouble portal(m_desktop.busAddress());
    portal.immediate = {Code::other, {}};
    launch();
    toastAfter("--capture-area");
    EXPECT_EQ(portal.calls.size(), 1U);
}

TEST_F(KwinPathTest, ClosingThePortalsDialogShowsNothing) {
    ScreenshotPortalDouble portal(m_desktop.busAddress());
    launch();
    command("--capture-area");
    ASSERT_TRUE(waitFor([&] { return !portal.calls.empty(); }));
    portal.respond({Code::cancelled, {}});
    // The next capture starts when this one is over; its toast is the first thing seen.
    portal.immediate = {Code::other, {}};
    toastAfter("--capture-area");
}

TEST_F(KwinPathTest, ThePortalsPictureComesToTheClipboardAndAToast) {
    ScreenshotPortalDouble portal(m_desktop.busAddress());
    const QByteArray paths = m_desktop.homePath().toUtf8() + "/Pictures/shot.png";
    launch();
    command("--capture-area");
    ASSERT_TRUE(waitFor([&] { return !portal.calls.empty(); }));
    const QImage picture = distinctPicture({320, 200});
    ASSERT_TRUE(picture.save(QString::fromUtf8(paths)));
    portal.respond({Code::done, QStringLiteral("file://") + QString::fromUtf8(paths)});
    EXPECT_TRUE(waitFor([&] { return m_desktop.screenshot() != m_empty; }));
    const QImage pasted = QImage::fromData(
        m_desktop.run(QStringLiteral("timeout"), {QStringLiteral("10"), QStringLiteral("wl-paste"),
                                                  QStringLiteral("-t"), QStringLiteral("image/png")}));
    EXPECT_EQ(pasted.convertToFormat(QImage::Format_RGB32), picture);
    m_desktop.start(QStringLiteral("wl-copy"), {QStringLiteral("--foreground"), QStringLiteral("text")});
}

TEST_F(KwinPathTest, TheSettingsWindowHasTheDesktopAskInFrontOfIt) {
    m_desktop.start(QStringLiteral("/usr/libexec/xdg-permission-store"));
    ScreenshotPortalDouble portal(m_desktop.busAddress());
    launch();
    command("--settings");
    AccessibleTree controls(m_desktop.busAddress());
    std::optional<AccessibleNode> allow;
    EXPECT_TRUE(waitFor([&] {
        bool inRow = false;
        for (const AccessibleNode& node : controls.nodes(QStringLiteral("framora"))) {
            inRow = inRow || node.name == u"Screen Capture";
            if (inRow && node.showing && node.role == u"push button" && node.name.startsWith(u"Allow")) {
                allow = node;
                return true;
            }
        }
        return false;
    }));
    ASSERT_TRUE(allow);
    ASSERT_TRUE(controls.press(*allow));
    ASSERT_TRUE(waitFor([&] { return !portal.calls.empty(); })) << m_framora->output().toStdString();
    const auto& call = portal.calls.back();
    EXPECT_EQ(call.options.value(QStringLiteral("interactive")), false);
    EXPECT_TRUE(call.parentWindow.startsWith(QStringLiteral("wayland:"))) << call.parentWindow.toStdString();
    EXPECT_GT(call.parentWindow.size(), 8);
    EXPECT_FALSE(call.options.value(QStringLiteral("activation_token")).toString().isEmpty());
    portal.respond({Code::cancelled, {}});
}

} // namespace
} // namespace framora
