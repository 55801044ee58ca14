#include "platform/desktop/SingleInstance.h"

#include "desktop/support/VirtualDesktop.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace framora {
namespace {

class SingleInstanceTest : public testing::Test {
protected:
    /// Becomes the one instance in another process, which is then killed as it stands.
    void dieAsTheInstance() {
        const pid_t child = fork();
        if (child == 0) {
            SingleInstance instance(folder.path(), display);
            const bool acquired = instance.acquire();
            // No destructor runs: lock and socket stay behind.
            _exit(acquired ? 0 : 1);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_EQ(status, 0);
        ASSERT_FALSE(QDir(folder.path()).entryList(QDir::Files | QDir::System).isEmpty());
    }

    QTemporaryDir folder;
    QString display = QStringLiteral(":7");
};

TEST_F(SingleInstanceTest, theSecondStartIsRefusedAndTellsTheFirst) {
    SingleInstance first(folder.path(), display);
    ASSERT_TRUE(first.acquire());
    int starts = 0;
    first.onSecondStart([&] { ++starts; });
    SingleInstance second(folder.path(), display);
    EXPECT_FALSE(second.acquire());
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return starts == 1; }));
    SingleInstance third(folder.path(), display);
    EXPECT_FALSE(third.acquire());
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return starts == 2; }));
}

TEST_F(SingleInstanceTest, withoutAFolderEveryProcessIsTheOneAndLeavesNothingBehind) {
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder.path()));
    {
        SingleInstance first({}, display);
        SingleInstance second({}, display);
        EXPECT_TRUE(first.acquire());
        EXPECT_TRUE(second.acquire());
    }
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
    QDir::setCurrent(before);
}

TEST_F(SingleInstanceTest, aLinkInTheLocksPlaceIsNotFollowed) {
    const QString elsewhere = folder.filePath(QStringLiteral("elsewhere"));
    ASSERT_TRUE(QFile::link(elsewhere, folder.filePath(QStringLiteral("framora-_7.lock"))));
    SingleInstance first(folder.path(), display);
    EXPECT_TRUE(first.acquire());
    EXPECT_FALSE(QFile::exists(elsewhere));
}

TEST_F(SingleInstanceTest, anotherDisplayHasItsOwn) {
    SingleInstance first(folder.path(), display);
    ASSERT_TRUE(first.acquire());
    SingleInstance other(folder.path(), QStringLiteral(":8"));
    EXPECT_TRUE(other.acquire());
}

TEST_F(SingleInstanceTest, afterAnOrderlyEndTheNextStartIsTheFirst) {
    std::make_unique<SingleInstance>(folder.path(), display)->acquire();
    SingleInstance next(folder.path(), display);
    EXPECT_TRUE(next.acquire());
}

TEST_F(SingleInstanceTest, whatAKilledProcessLeftIsTakenOver) {
    dieAsTheInstance();
    SingleInstance next(folder.path(), display);
    ASSERT_TRUE(next.acquire());
    int starts = 0;
    next.onSecondStart([&] { ++starts; });
    SingleInstance second(folder.path(), display);
    EXPECT_FALSE(second.acquire());
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return starts == 1; }));
}

TEST_F(SingleInstanceTest, withoutAWritableFolderItStillRuns) {
    SingleInstance instance(folder.path() + QStringLiteral("/missing"), display);
    EXPECT_TRUE(instance.acquire());
}

} // namespace
} // namespace framora
