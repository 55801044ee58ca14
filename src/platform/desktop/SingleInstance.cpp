#include "platform/desktop/SingleInstance.h"

#include <QDir>
#include <QLocalSocket>

namespace framora {

namespace {

QString baseName(const QString& folder, const QString& display) {
    QString name = QStringLiteral("framora-") + display;
    for (QChar& letter : name) {
        if (!letter.isLetterOrNumber() && letter != u'-' && letter != u'.')
            letter = u'_';
    }
    return QDir(folder).filePath(name);
}

} // namespace

SingleInstance::SingleInstance(const QString& folder, const QString& display)
    : m_socketPath(baseName(folder, display) + QStringLiteral(".socket")),
      m_lock(baseName(folder, display) + QStringLiteral(".lock")) {
    // However long the other one has been running, it is not stale while its process lives.
    m_lock.setStaleLockTime(0);
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (auto* socket = m_server.nextPendingConnection()) {
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            if (m_handler)
                m_handler();
        }
    });
}

bool SingleInstance::acquire() {
    if (!m_lock.tryLock(0) && m_lock.error() == QLockFile::LockFailedError) {
        QLocalSocket socket;
        socket.connectToServer(m_socketPath);
        socket.waitForConnected(2000);
        return false;
    }
    // Without a writable runtime folder there is nothing to hold; one process too many is better than none.
    QLocalServer::removeServer(m_socketPath);
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    m_server.listen(m_socketPath);
    return true;
}

} // namespace framora
