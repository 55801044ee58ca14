#include "desktop/support/ScriptedClipboard.h"
#include "desktop/support/ScriptedCompositor.h"
#include "desktop/support/ScriptedPieces.h"

#include <QFile>

#include <algorithm>
#include <gtest/gtest.h>

namespace framora {
namespace {

/// The whole program on a compositor that answers as a test tells it, its windows on none.
class OddFramoraTest : public testing::Test {
protected:
    OddFramoraTest() {
        compositor.setEnvironmentVariable(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        compositor.storeUnchangedSettings();
    }

    /// Processes of the program that listen to the clipboard.
    std::vector<qint64> listening() {
        std::vector<qint64> found = compositor.processes();
        std::erase_if(found,
                      [](qint64 pid) { return ChildProcess::nameOf(pid) != QStringLiteral("framora"); });
        const int devices =
            compositor.ask<int>([](ScriptedPieces& pieces) { return pieces.clipboard->devices(); });
        return devices == int(found.size()) ? found : std::vector<qint64>();
    }
    void refuseEverything() {
        compositor.perform([](ScriptedPieces& pieces) {
            wl_client* client = nullptr;
            wl_list* const clients = wl_display_get_client_list(pieces.display);
            wl_client_for_each(client, clients) wl_client_post_implementation_error(client, "odd");
        });
    }

    ScriptedCompositor compositor;
};

TEST_F(OddFramoraTest, startsAgainOnceWhenItsConnectionIsRefused) {
    // What it says goes to a file: a pipe would end with the first process.
    const QString log = compositor.scratchPath() + QStringLiteral("/said");
    ChildProcess& first =
        compositor.start(QStringLiteral("sh"), {QStringLiteral("-c"), QStringLiteral("exec \"$0\" 2>\"$1\""),
                                                QStringLiteral(FRAMORA_PROGRAM), log});
    ASSERT_TRUE(DesktopSession::waitFor([&] { return listening() == std::vector{first.pid()}; }));
    refuseEverything();
    EXPECT_TRUE(first.waitForExit());
    EXPECT_EQ(first.exitCode(), 0);
    const auto said = [&] {
        QFile file(log);
        return file.open(QIODevice::ReadOnly) ? file.readAll().count("refused a request") : 0;
    };
    EXPECT_EQ(said(), 1);
    std::vector<qint64> second;
    ASSERT_TRUE(DesktopSession::waitFor([&] { return (second = listening()).size() == 1; }));
    EXPECT_NE(second.front(), first.pid());

    // One that is refused again at once goes on as it is.
    refuseEverything();
    ASSERT_TRUE(DesktopSession::waitFor([&] { return said() == 2; }));
    // It hears another start, which would become the program itself otherwise.
    ChildProcess& third = compositor.start(QStringLiteral(FRAMORA_PROGRAM));
    EXPECT_TRUE(third.waitForExit());
    EXPECT_EQ(third.exitCode(), 0);
    EXPECT_EQ(ChildProcess::nameOf(second.front()), QStringLiteral("framora"));
}

} // namespace
} // namespace framora
