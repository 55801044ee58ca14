#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QString>

namespace framora {

/// Questions and commands to a running sway.
class SwayIpc {
public:
    enum class Request : unsigned { command = 0, outputs = 3, tree = 4 };

    /// Throws std::runtime_error when nobody answers on the socket.
    explicit SwayIpc(const QString& socketPath);
    ~SwayIpc();
    SwayIpc(const SwayIpc&) = delete;
    SwayIpc& operator=(const SwayIpc&) = delete;

    /// The answer. Throws std::runtime_error when the compositor has gone or says nothing for ten seconds.
    QJsonDocument request(Request type, const QByteArray& payload = {});

private:
    QByteArray read(qsizetype size);

    int m_socket = -1;
};

} // namespace framora
