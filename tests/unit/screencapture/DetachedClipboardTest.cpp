#include "screencapture/DetachedClipboard.h"

#include <QFile>
#include <QTemporaryDir>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace framora {
namespace {

/// Ends the tool as soon as it owns the clipboard, and writes what it serves into a pipe with a name.
class OrphanedOwner final : public ClipboardOwner {
public:
    OrphanedOwner(std::vector<uint8_t> png, QByteArray pipe, pid_t tool)
        : m_png(std::move(png)), m_pipe(std::move(pipe)), m_tool(tool) {}
    bool own() override {
        ::kill(m_tool, SIGKILL);
        while (getppid() == m_tool)
            usleep(1000);
        return true;
    }
    void run() override {
        const int pipe = open(m_pipe.constData(), O_WRONLY);
        [[maybe_unused]] const auto written = write(pipe, m_png.data(), m_png.size());
        close(pipe);
    }

private:
    std::vector<uint8_t> m_png;
    QByteArray m_pipe;
    pid_t m_tool;
};

TEST(DetachedClipboardTest, thePictureIsServedAlsoWhenTheToolIsKilledMeanwhile) {
    const QTemporaryDir folder;
    const QByteArray pipe = QFile::encodeName(folder.filePath(QStringLiteral("served")));
    ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
    const int served = open(pipe.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(served, 0);
    const pid_t tool = fork();
    if (tool == 0) {
        leaveOnClipboard({1, 2, 3}, [&pipe, self = getpid()](std::vector<uint8_t> png) {
            return std::make_unique<OrphanedOwner>(std::move(png), pipe, self);
        });
        _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(tool, &status, 0), tool);
    ASSERT_TRUE(WIFSIGNALED(status));

    pollfd waiting{served, POLLIN, 0};
    constexpr int patience = 5000;
    ASSERT_EQ(poll(&waiting, 1, patience), 1) << "nobody serves the picture";
    uint8_t bytes[4];
    EXPECT_EQ(read(served, bytes, sizeof bytes), 3);
    close(served);
}

} // namespace
} // namespace framora
