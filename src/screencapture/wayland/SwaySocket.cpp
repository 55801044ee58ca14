#include "screencapture/wayland/SwaySocket.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace framora {

namespace {

constexpr std::string_view kMagic = "i3-ipc";
constexpr uint32_t kMostBytes = 32U << 20;

/// In front of every message, in the machine's byte order: the magic word, then the length and the kind.
constexpr std::size_t kHeaderBytes = kMagic.size() + 2 * sizeof(uint32_t);
using Header = std::array<char, kHeaderBytes>;

Header headerOf(uint32_t length, uint32_t kind) {
    Header header;
    std::memcpy(header.data(), kMagic.data(), kMagic.size());
    std::memcpy(header.data() + kMagic.size(), &length, sizeof length);
    std::memcpy(header.data() + kMagic.size() + sizeof length, &kind, sizeof kind);
    return header;
}

} // namespace

SwaySocket::SwaySocket(Question question) : m_question(question) {
    const char* path = std::getenv("SWAYSOCK");
    sockaddr_un address{};
    if (!path || !*path || std::strlen(path) >= sizeof address.sun_path)
        return;
    address.sun_family = AF_UNIX;
    std::strcpy(address.sun_path, path);
    m_socket = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (m_socket < 0)
        return;
    const Header header = headerOf(0, static_cast<uint32_t>(question));
    if (connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        send(m_socket, header.data(), header.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(header.size()))
        disconnect();
}

SwaySocket::~SwaySocket() {
    disconnect();
}

void SwaySocket::disconnect() {
    if (m_socket >= 0)
        close(m_socket);
    m_socket = -1;
}

bool SwaySocket::readExactly(char* to, std::size_t count, std::chrono::steady_clock::time_point end) const {
    while (count > 0) {
        const ssize_t got = recv(m_socket, to, count, 0);
        if (got > 0) {
            to += got;
            count -= static_cast<std::size_t>(got);
            continue;
        }
        if (got == 0 || (errno != EAGAIN && errno != EINTR))
            return false;
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now()).count();
        pollfd waiting{m_socket, POLLIN, 0};
        if (left <= 0 || (poll(&waiting, 1, static_cast<int>(left)) < 0 && errno != EINTR))
            return false;
    }
    return true;
}

std::string SwaySocket::answer(std::chrono::milliseconds patience) {
    const auto end = std::chrono::steady_clock::now() + patience;
    std::string text;
    Header header;
    if (m_socket >= 0 && readExactly(header.data(), header.size(), end)) {
        uint32_t length = 0;
        std::memcpy(&length, header.data() + kMagic.size(), sizeof length);
        if (header == headerOf(length, static_cast<uint32_t>(m_question)) && length <= kMostBytes) {
            text.resize(length);
            if (!readExactly(text.data(), length, end))
                text.clear();
        }
    }
    disconnect();
    return text;
}

} // namespace framora
