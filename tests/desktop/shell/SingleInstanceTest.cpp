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

    /// Another process that starts the program when it is told to. It is made before the first instance,
    /// whose lock it would share otherwise.
    class LaterStart {
    public:
        explicit LaterStart(const SingleInstanceTest& test, const QByteArray& message = {},
                            bool onlyTells = false) {
            EXPECT_EQ(pipe(m_pipe), 0);
            m_child = fork();
            if (m_child != 0)
                return;
            char byte = 0;
            close(m_pipe[1]);
            if (read(m_pipe[0], &byte, 1) != 1)
                _exit(2);
            SingleInstance instance(test.folder.path(), test.display);
            if (onlyTells)
                _exit(instance.tellRunning(message) ? 1 : 0);
            _exit(instance.acquire(message) ? 0 : 1);
        }
        ~LaterStart() {
            close(m_pipe[0]);
            close(m_pipe[1]);
        }
        void go() { EXPECT_EQ(write(m_pipe[1], "", 1), 1); }
        bool hasEnded() const {
            siginfo_t info{};
            return waitid(P_PID, static_cast<id_t>(m_child), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
                   info.si_pid == m_child;
        }
        /// 0 when it became the one, 1 when it was refused.
        int exitCode() const {
            int status = 0;
            return waitpid(m_child, &status, 0) == m_child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        }

    private:
        int m_pipe[2] = {-1, -1};
        pid_t m_child = 0;
    };

    QTemporaryDir folder;
    QString display = QStringLiteral(":7");
};

TEST_F(SingleInstanceTest, theSecondStartIsRefusedAndTellsTheFirst) {
    LaterStart second(*this);
    LaterStart third(*this);
    SingleInstance first(folder.path(), display);
    ASSERT_TRUE(first.acquire());
    int starts = 0;
    first.onSecondStart([&](const QByteArray&) { ++starts; });
    second.go();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return starts == 1; }));
    EXPECT_EQ(second.exitCode(), 1);
    third.go();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return starts == 2; }));
    EXPECT_EQ(third.exitCode(), 1);
}

TEST_F(SingleInstanceTest, whatALaterStartSaysIsHeardWhole) {
    const QByteArray longMessage(SingleInstance::longestMessage, 'x');
    LaterStart second(*this, "settings\ntoken");
    LaterStart third(*this, longMessage, true);
    SingleInstance first(folder.path(), display);
    ASSERT_TRUE(first.acquire());
    std::vector<QByteArray> heard;
    first.onSecondStart([&](const QByteArray& message) { heard.push_back(message); });
    second.go();
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return heard.size() == 1; }));
    EXPECT_EQ(heard[0], "settings\ntoken");
    EXPECT_EQ(second.exitCode(), 1);
    third.go();
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return heard.size() == 2; }));
    EXPECT_EQ(heard[1], longMessage);
    EXPECT_EQ(third.exitCode(), 1);
}

TEST_F(SingleInstanceTest, thereIsNobodyToTellBeforeTheFirstAndAfterItsEnd) {
    SingleInstance instance(folder.path(), display);
    EXPECT_FALSE(instance.tellRunning("settings"));
    EXPECT_TRUE(QDir(folder.path()).isEmpty()) << "only telling leaves nothing";
    dieAsTheInstance();
    EXPECT_FALSE(instance.tellRunning("settings"));
    EXPECT_FALSE(SingleInstance({}, display).tellRunning("settings"));
}

TEST_F(SingleInstanceTest, aStartWhileTheFirstIsEndingWaitsAndTakesOver) {
    LaterStart second(*this);
    auto first = std::make_unique<SingleInstance>(folder.path(), display);
    ASSERT_TRUE(first->acquire());
    int starts = 0;
    first->onSecondStart([&](const QByteArray&) { ++starts; });
    first->endListening();
    second.go();
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return second.hasEnded(); }, 300));
    first.reset();
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_EQ(starts, 0);
}

TEST_F(SingleInstanceTest, aStartThatTheFirstHearsOfNoMoreTakesOver) {
    LaterStart second(*this);
    auto first = std::make_unique<SingleInstance>(folder.path(), display);
    ASSERT_TRUE(first->acquire());
    // Its connection waits in the listener's queue, since no event loop runs here.
    second.go();
    EXPECT_FALSE(second.hasEnded());
    usleep(200'000);
    first->endListening();
    first.reset();
    EXPECT_EQ(second.exitCode(), 0);
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
    LaterStart second(*this);
    dieAsTheInstance();
    SingleInstance next(folder.path(), display);
    ASSERT_TRUE(next.acquire());
    int starts = 0;
    next.onSecondStart([&](const QByteArray&) { ++starts; });
    second.go();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return starts == 1; }));
    EXPECT_EQ(second.exitCode(), 1);
}

TEST_F(SingleInstanceTest, withoutAWritableFolderItStillRuns) {
    SingleInstance instance(folder.path() + QStringLiteral("/missing"), display);
    EXPECT_TRUE(instance.acquire());
}

} // namespace
} // namespace framora
