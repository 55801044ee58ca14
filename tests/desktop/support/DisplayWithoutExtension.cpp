#include "desktop/support/DisplayWithoutExtension.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace framora {
namespace {

constexpr unsigned char queryExtension = 98;
constexpr qsizetype greetingSize = 12;
constexpr std::size_t mostDescriptors = 16;

template <typename Number> qsizetype numberAt(const QByteArray& bytes, qsizetype offset) {
    // Clients of this machine speak its byte order.
    Number number;
    std::memcpy(&number, bytes.constData() + offset, sizeof number);
    return qsizetype(number);
}

qsizetype padded(qsizetype size) {
    return (size + 3) / 4 * 4;
}

/// Bytes of the first request; 0 while that cannot be told.
qsizetype requestSize(const QByteArray& bytes) {
    if (bytes.size() < 4)
        return 0;
    if (const qsizetype words = numberAt<quint16>(bytes, 2))
        return 4 * words;
    return bytes.size() < 8 ? 0 : 4 * numberAt<quint32>(bytes, 4);
}

sockaddr_un addressOf(const QByteArray& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.constData(), std::size_t(path.size()));
    return address;
}

QByteArray socketPath(const QString& number) {
    return "/tmp/.X11-unix/X" + number.toLatin1();
}

QByteArray lockPath(int number) {
    return "/tmp/.X" + QByteArray::number(number) + "-lock";
}

/// Bytes and the descriptors that came with them; no bytes at the end.
QByteArray receive(int from, std::vector<int>& descriptors) {
    std::array<char, 65536> buffer;
    alignas(cmsghdr) std::array<char, CMSG_SPACE(mostDescriptors * sizeof(int))> control;
    iovec part{buffer.data(), buffer.size()};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    const ssize_t size = ::recvmsg(from, &message, MSG_CMSG_CLOEXEC);
    if (size <= 0)
        return {};
    for (cmsghdr* each = CMSG_FIRSTHDR(&message); each; each = CMSG_NXTHDR(&message, each)) {
        if (each->cmsg_level != SOL_SOCKET || each->cmsg_type != SCM_RIGHTS)
            continue;
        const std::size_t first = descriptors.size();
        const std::size_t length = each->cmsg_len - CMSG_LEN(0);
        descriptors.resize(first + length / sizeof(int));
        std::memcpy(descriptors.data() + first, CMSG_DATA(each), length);
    }
    return QByteArray(buffer.data(), size);
}

bool sendAll(int to, const QByteArray& bytes, std::vector<int>& descriptors) {
    qsizetype done = 0;
    while (done < bytes.size()) {
        alignas(cmsghdr) std::array<char, CMSG_SPACE(mostDescriptors * sizeof(int))> control{};
        iovec part{const_cast<char*>(bytes.constData()) + done, std::size_t(bytes.size() - done)};
        msghdr message{};
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        if (!descriptors.empty()) {
            const std::size_t length = descriptors.size() * sizeof(int);
            message.msg_control = control.data();
            message.msg_controllen = CMSG_SPACE(length);
            cmsghdr* rights = CMSG_FIRSTHDR(&message);
            rights->cmsg_level = SOL_SOCKET;
            rights->cmsg_type = SCM_RIGHTS;
            rights->cmsg_len = CMSG_LEN(length);
            std::memcpy(CMSG_DATA(rights), descriptors.data(), length);
        }
        const ssize_t sent = ::sendmsg(to, &message, MSG_NOSIGNAL);
        for (const int descriptor : descriptors)
            ::close(descriptor);
        descriptors.clear();
        if (sent <= 0)
            return false;
        done += sent;
    }
    return true;
}

} // namespace

QByteArray ExtensionHider::passed(const QByteArray& bytes) {
    m_waiting += bytes;
    QByteArray result;
    const auto pass = [&](qsizetype size) {
        result += m_waiting.left(size);
        m_waiting.remove(0, size);
    };
    if (!m_isConnected) {
        // Names and data of an authorisation follow the greeting.
        if (m_waiting.size() < greetingSize)
            return result;
        m_isConnected = true;
        m_passOn =
            greetingSize + padded(numberAt<quint16>(m_waiting, 6)) + padded(numberAt<quint16>(m_waiting, 8));
    }
    for (;;) {
        const qsizetype known = std::min(m_passOn, m_waiting.size());
        pass(known);
        m_passOn -= known;
        const qsizetype size = requestSize(m_waiting);
        if (m_passOn > 0 || size == 0)
            return result;
        if (static_cast<unsigned char>(m_waiting[0]) == queryExtension) {
            // Nobody waits for the answer to half a request.
            if (m_waiting.size() < size)
                return result;
            const qsizetype name = m_waiting.indexOf(m_extension);
            if (name >= 0 && name < size)
                m_waiting[name] = '-';
        }
        m_passOn = size;
    }
}

DisplayWithoutExtension::DisplayWithoutExtension(const QString& realDisplay, QByteArray extension)
    : m_realSocket(socketPath(realDisplay.section(u':', 1).section(u'.', 0, 0))),
      m_extension(std::move(extension)) {
    constexpr int firstNumber = 400;
    constexpr int lastNumber = 999;
    for (m_number = firstNumber; !take(m_number); ++m_number)
        if (m_number == lastNumber)
            throw std::runtime_error("no display number is free");
    m_accepting = std::thread([this] { accept(); });
}

DisplayWithoutExtension::~DisplayWithoutExtension() {
    ::shutdown(m_listener, SHUT_RDWR);
    m_accepting.join();
    ::close(m_listener);
    ::unlink(socketPath(QString::number(m_number)).constData());
    ::unlink(lockPath(m_number).constData());
    for (Client& each : m_clients) {
        ::shutdown(each.client, SHUT_RDWR);
        ::shutdown(each.server, SHUT_RDWR);
        each.requests.join();
        each.answers.join();
        ::close(each.client);
        ::close(each.server);
    }
}

bool DisplayWithoutExtension::take(int number) {
    // As X servers keep a number to themselves.
    const QByteArray lock = lockPath(number);
    const int file = ::open(lock.constData(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0444);
    if (file < 0)
        return false;
    const QByteArray owner = QByteArray::number(::getpid()).rightJustified(10) + '\n';
    const bool written = ::write(file, owner.constData(), std::size_t(owner.size())) == owner.size();
    ::close(file);
    m_listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_un address = addressOf(socketPath(QString::number(number)));
    if (written && ::bind(m_listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
        ::listen(m_listener, 16) == 0)
        return true;
    ::close(m_listener);
    ::unlink(lock.constData());
    return false;
}

void DisplayWithoutExtension::accept() {
    for (;;) {
        const int client = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0)
            return;
        serve(client);
    }
}

void DisplayWithoutExtension::serve(int client) {
    const int server = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_un address = addressOf(m_realSocket);
    if (::connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        ::close(server);
        ::close(client);
        return;
    }
    m_clients.push_back({client, server, std::thread([this, client, server] {
                             ExtensionHider hider(m_extension);
                             forward(client, server, &hider);
                         }),
                         std::thread([client, server] { forward(server, client, nullptr); })});
}

void DisplayWithoutExtension::forward(int from, int to, ExtensionHider* hider) {
    std::vector<int> descriptors;
    for (;;) {
        QByteArray bytes = receive(from, descriptors);
        if (bytes.isEmpty())
            break;
        if (hider)
            bytes = hider->passed(bytes);
        if (!sendAll(to, bytes, descriptors))
            break;
    }
    for (const int descriptor : descriptors)
        ::close(descriptor);
    ::shutdown(to, SHUT_WR);
}

} // namespace framora
