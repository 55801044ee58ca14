#include "desktop/support/KwinDesktop.h"

#include <gtest/gtest.h>

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
        EXPECT_TRUE(ChildProcess::nameOf(pid).isEmpty()) << ChildProcess::nameOf(pid).toStdString();
}

TEST(KwinDesktop, BringsKeysToTheFocusedProgram) {
    KwinDesktop desktop({.portal = false});
    const QString typed = desktop.scratchPath() + QStringLiteral("/typed");
    const QImage before = desktop.screenshot();
    desktop.start(QStringLiteral("weston-terminal"),
                  {QStringLiteral("--shell=") + QStringLiteral("/bin/sh")});
    ASSERT_TRUE(DesktopSession::waitFor([&] { return desktop.screenshot() != before; }));
    Q_UNUSED(typed);
}

} // namespace
} // namespace framora
