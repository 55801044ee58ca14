#include "platform/x11/X11Connector.h"

#include <QByteArray>
#include <cstddef>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace framora {
namespace {

using namespace std::chrono_literals;

/// A socket at which a server is named, and nobody who answers there.
class SilentServer {
public:
    SilentServer() {
        // A display that nobody has, and of its two addresses the one that is no file.
        const QByteArray number = QByteArray::number(20000 + getpid() % 10000);
        const QByteArray name = "/tmp/.X11-unix/X" + number;
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path + 1, name.constData(), sizeof(address.sun_path) - 1);
        const auto length = socklen_t(offsetof(sockaddr_un, sun_path) + 1 + std::size_t(name.size()));
        if (bind(m_socket, reinterpret_cast<const sockaddr*>(&address), length) != 0 ||
            listen(m_socket, 8) != 0)
            throw std::runtime_error("no socket");
        qputenv("DISPLAY", ':' + number);
    }
    ~SilentServer() {
        close(m_socket);
        if (m_before.isNull())
            qunsetenv("DISPLAY");
        else
            qputenv("DISPLAY", m_before);
    }
    SilentServer(const SilentServer&) = delete;
    SilentServer& operator=(const SilentServer&) = delete;

    bool hasCaller() {
        pollfd input{m_socket, POLLIN, 0};
        return poll(&input, 1, 0) == 1;
    }
    /// Takes a caller and hangs up on it.
    void refuse() { close(accept(m_socket, nullptr, nullptr)); }

private:
    QByteArray m_before = qgetenv("DISPLAY");
    int m_socket = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

TEST(X11ConnectorTest, whereThereIsNoServerTheAnswerComesAtOnce) {
    const QByteArray before = qgetenv("DISPLAY");
    qputenv("DISPLAY", ":31999");
    X11Connector connector;
    EXPECT_EQ(connector.connect(1min), nullptr);
    EXPECT_EQ(connector.connect(1min), nullptr);
    if (before.isNull())
        qunsetenv("DISPLAY");
    else
        qputenv("DISPLAY", before);
}

TEST(X11ConnectorTest, aServerThatNeverAnswersIsWaitedForNoLongerThanAskedAndCalledOnce) {
    SilentServer server;
    X11Connector connector;
    EXPECT_EQ(connector.connect(200ms), nullptr);
    EXPECT_EQ(connector.connect(1ms), nullptr);
    ASSERT_TRUE(server.hasCaller());
    server.refuse();
    EXPECT_FALSE(server.hasCaller());
    // The attempt has its answer now, whoever asks.
    EXPECT_EQ(connector.connect(1min), nullptr);
    EXPECT_FALSE(server.hasCaller());
}

} // namespace
} // namespace framora
