#include "screencapture/wayland/LocalQuestion.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace framora {

LocalQuestion::LocalQuestion(const std::string& path, std::string_view question) {
    sockaddr_un address{};
    if (path.empty() || path.size() >= sizeof address.sun_path)
        return;
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    m_socket = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (m_socket < 0)
        return;
    if (connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
        send(m_socket, question.data(), question.size(), MSG_NOSIGNAL) ==
            static_cast<ssize_t>(question.size()))
        return;
    close(m_socket);
    m_socket = -1;
}

LocalQuestion::~LocalQuestion() {
    if (m_socket >= 0)
        close(m_socket);
}

long LocalQuestion::readSome(char* to, std::size_t most, Time end) const {
    while (true) {
        const ssize_t got = recv(m_socket, to, most, 0);
        if (got >= 0)
            return got;
        if (errno != EAGAIN && errno != EINTR)
            return -1;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Time::clock::now()).count();
        pollfd waiting{m_socket, POLLIN, 0};
        if (left <= 0 || (poll(&waiting, 1, static_cast<int>(left)) < 0 && errno != EINTR))
            return -1;
    }
}

bool LocalQuestion::readExactly(char* to, std::size_t count, Time end) const {
    while (count > 0) {
        const long got = readSome(to, count, end);
        if (got <= 0)
            return false;
        to += got;
        count -= static_cast<std::size_t>(got);
    }
    return true;
}

std::string LocalQuestion::readToEnd(std::size_t most, Time end) const {
    std::string answer;
    std::array<char, 16384> part;
    while (asked()) {
        const long got = readSome(part.data(), part.size(), end);
        if (got == 0)
            return answer;
        if (got < 0 || answer.size() + static_cast<std::size_t>(got) > most)
            break;
        answer.append(part.data(), static_cast<std::size_t>(got));
    }
    return {};
}

} // namespace framora
