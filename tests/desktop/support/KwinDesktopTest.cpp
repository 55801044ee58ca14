#include "desktop/support/KwinDesktop.h"

#include <QFile>

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

namespace framora {
namespace {

TEST(KwinDesktop, ComposesWhatAProgramShowsAndEndsWithEverything) {
    std::vector<qint64> left;
    {
        KwinDesktop desktop({.size = {900, 600}, .portal = false});
        const QImage before = desktop.screenshot();
        ASSERT_EQ(before.size(), QSize(900, 600));
        ChildProcess& terminal = desktop.start(QStringLiteral("weston-terminal"));
        EXPECT_TRUE(DesktopSession::waitFor([&] { return desktop.screenshot() != before; }))
            << terminal.output().toStdString();
        left = desktop.processes();
        EXPECT_GE(left.size(), 3U); // The bus, KWin and the program, which may have a shell.
    }
    for (const qint64 pid : left)
        EXPECT_TRUE(DesktopSession::waitFor([&] { return ChildProcess::nameOf(pid).isEmpty(); }))
            << ChildProcess::nameOf(pid).toStdString();
}

TEST(KwinDesktop, BringsKeysToTheFocusedProgram) {
    KwinDesktop desktop({.portal = false});
    const QImage before = desktop.screenshot();
    desktop.start(QStringLiteral("weston-terminal"));
    ASSERT_TRUE(DesktopSession::waitFor([&] { return desktop.screenshot() != before; }));
    // The shell's, once it reads: typed again until it does.
    const QString typed = desktop.homePath() + QStringLiteral("/a");
    EXPECT_TRUE(DesktopSession::waitFor([&] {
        desktop.input().press({KEY_LEFTSHIFT, KEY_DOT}); // ">~/a" makes an empty file.
        desktop.input().press({KEY_LEFTSHIFT, KEY_GRAVE});
        desktop.input().press({KEY_SLASH});
        desktop.input().press({KEY_A});
        desktop.input().press({KEY_ENTER});
        return DesktopSession::waitFor([&] { return QFile::exists(typed); }, 500);
    }));
}

TEST(KwinDesktop, BringsUpThePortalWithItsBackend) {
    KwinDesktop desktop;
    const QByteArray portal =
        desktop.run(QStringLiteral("gdbus"),
                    {QStringLiteral("introspect"), QStringLiteral("--session"), QStringLiteral("--dest"),
                     QStringLiteral("org.freedesktop.portal.Desktop"), QStringLiteral("--object-path"),
                     QStringLiteral("/org/freedesktop/portal/desktop")});
    EXPECT_TRUE(portal.contains("org.freedesktop.portal.Screenshot"));
    EXPECT_TRUE(portal.contains("org.freedesktop.portal.GlobalShortcuts"));
    desktop.portal().end();
    EXPECT_FALSE(desktop.serviceIsOnBus(QStringLiteral("org.freedesktop.portal.Desktop")));
    desktop.startPortal();
    EXPECT_TRUE(desktop.serviceIsOnBus(QStringLiteral("org.freedesktop.portal.Desktop")));
}

} // namespace
} // namespace framora
