#include "desktop/support/SwayIpc.h"

#include <cstring>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace framora {
namespace {

constexpr QByteArrayView magic = "i3-ipc";

} // namespace

SwayIpc::SwayIpc(const QString& socketPath) : m_socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const QByteArray path = socketPath.toUtf8();
    if (path.size() < qsizetype(sizeof address.sun_path))
        std::memcpy(address.sun_path, path.constData(), std::size_t(path.size()));
    if (::connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        ::close(m_socket);
        throw std::runtime_error("no sway at " + path.toStdString());
    }
}

SwayIpc::~SwayIpc() {
    ::close(m_socket);
}

QByteArray SwayIpc::read(qsizetype size) {
    QByteArray bytes;
    pollfd waiting = {m_socket, POLLIN, 0};
    while (bytes.size() < size) {
        QByteArray part(size - bytes.size(), Qt::Uninitialized);
        const ssize_t count =
            ::poll(&waiting, 1, 10000) == 1 ? ::recv(m_socket, part.data(), std::size_t(part.size()), 0) : 0;
        if (count <= 0)
            throw std::runtime_error("sway does not answer");
        bytes += part.first(count);
    }
    return bytes;
}

QJsonDocument SwayIpc::request(Request type, const QByteArray& payload) {
    // Both lengths and types are in the machine's own byte order.
    const quint32 header[2] = {quint32(payload.size()), quint32(type)};
    const QByteArray message =
        magic.toByteArray() + QByteArray(reinterpret_cast<const char*>(header), sizeof header) + payload;
    if (::send(m_socket, message.constData(), std::size_t(message.size()), MSG_NOSIGNAL) != message.size())
        throw std::runtime_error("sway has gone");
    const QByteArray answer = read(magic.size() + qsizetype(sizeof header));
    quint32 size = 0;
    std::memcpy(&size, answer.constData() + magic.size(), sizeof size);
    return QJsonDocument::fromJson(read(size));
}

} // namespace framora
