#include "platform/desktop/SingleInstance.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QThread>
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <tuple>
#include <unistd.h>
#include <utility>

namespace framora {

namespace {

constexpr int patienceMilliseconds = 10000;
constexpr int pauseMilliseconds = 20;

/// Empty without a folder: the working directory is no stand-in for it.
QByteArray pathIn(const QString& folder, const QString& display, const char* extension) {
    if (folder.isEmpty())
        return {};
    QString name = QStringLiteral("framora-") + display;
    for (QChar& letter : name) {
        if (!letter.isLetterOrNumber() && letter != u'-' && letter != u'.')
            letter = u'_';
    }
    return QFile::encodeName(QDir(folder).filePath(name)) + extension;
}

/// False when the path is too long for a socket's address.
bool makeAddress(const QByteArray& path, sockaddr_un& address) {
    address = {};
    address.sun_family = AF_UNIX;
    if (path.size() >= static_cast<qsizetype>(sizeof address.sun_path))
        return false;
    std::copy(path.begin(), path.end(), address.sun_path);
    return true;
}

} // namespace

SingleInstance::SingleInstance(const QString& folder, const QString& display)
    : m_lockPath(pathIn(folder, display, ".lock")), m_socketPath(pathIn(folder, display, ".socket")) {}

SingleInstance::~SingleInstance() {
    endListening();
    // The file stays: removing it would let two processes hold two locks of one name.
    if (m_lock >= 0)
        close(m_lock);
}

bool SingleInstance::tellRunning(const QByteArray& message) const {
    return !m_socketPath.isEmpty() && tellTheOther(message, patienceMilliseconds);
}

bool SingleInstance::acquire(const QByteArray& message) {
    m_lock = open(m_lockPath.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (m_lock < 0)
        return true;
    const QDeadlineTimer patience(patienceMilliseconds);
    while (flock(m_lock, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        if (tellTheOther(message, static_cast<int>(patience.remainingTime())) || patience.hasExpired())
            return false;
        // The other has only just begun, or is about to end.
        QThread::msleep(pauseMilliseconds);
    }
    listenForOthers();
    return true;
}

bool SingleInstance::tellTheOther(const QByteArray& message, int milliseconds) const {
    sockaddr_un address{};
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socket < 0)
        return true;
    bool heard = false;
    // The message ends with this side of the connection. The answer is one byte; a process that ends closes
    // without it.
    if (makeAddress(m_socketPath, address) &&
        ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
        const auto length = static_cast<std::size_t>(std::min<qsizetype>(message.size(), longestMessage));
        std::ignore = send(socket, message.constData(), length, MSG_NOSIGNAL);
        shutdown(socket, SHUT_WR);
        pollfd answer{socket, POLLIN, 0};
        char byte = 0;
        heard = poll(&answer, 1, milliseconds) == 0 || read(socket, &byte, 1) == 1;
    }
    close(socket);
    return heard;
}

void SingleInstance::endListening() {
    m_notifier.reset();
    if (m_socket < 0)
        return;
    unlink(m_socketPath.constData());
    close(std::exchange(m_socket, -1));
}

void SingleInstance::listenForOthers() {
    sockaddr_un address{};
    m_socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (m_socket < 0 || !makeAddress(m_socketPath, address))
        return;
    // What a killed process left there; nobody else listens, since the lock is ours.
    unlink(m_socketPath.constData());
    if (::bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(m_socket, 8) != 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(m_socket, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &SingleInstance::accept);
    // What ends the program may take a while; whoever starts it meanwhile wants it to run again.
    connect(qApp, &QCoreApplication::aboutToQuit, this, &SingleInstance::endListening);
}

void SingleInstance::accept() {
    for (int peer; (peer = accept4(m_socket, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK)) >= 0;) {
        const auto message = std::make_shared<QByteArray>();
        if (hear(peer, *message)) {
            take(peer, *message);
        } else {
            // It is still speaking. The notifier goes with the connection, or with this.
            auto* more = new QSocketNotifier(peer, QSocketNotifier::Read, this);
            connect(more, &QSocketNotifier::activated, this, [this, more, peer, message] {
                if (!hear(peer, *message))
                    return;
                more->setEnabled(false);
                more->deleteLater();
                take(peer, *message);
            });
        }
        // The handler may have ended the listening.
        if (m_socket < 0)
            return;
    }
}

bool SingleInstance::hear(int peer, QByteArray& message) {
    char part[1024];
    for (;;) {
        const auto count = read(peer, part, sizeof part);
        if (count < 0)
            return errno != EAGAIN && errno != EINTR;
        if (count == 0)
            return true;
        message.append(part, count);
        if (message.size() >= longestMessage)
            return true;
    }
}

void SingleInstance::take(int peer, const QByteArray& message) {
    const char byte = 0;
    std::ignore = send(peer, &byte, 1, MSG_NOSIGNAL);
    close(peer);
    if (m_handler)
        m_handler(message);
}

} // namespace framora
