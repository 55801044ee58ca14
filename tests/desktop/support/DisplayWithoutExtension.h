#pragma once

#include <QByteArray>
#include <QString>

#include <list>
#include <thread>
#include <utility>

namespace framora {

/// What a client writes to an X server, request by request. Whoever asks for the extension of that name asks
/// for one that no server has.
class ExtensionHider {
public:
    explicit ExtensionHider(QByteArray extension) : m_extension(std::move(extension)) {}
    /// What may go on to the server of all that came so far.
    QByteArray passed(const QByteArray& bytes);

private:
    QByteArray m_extension;
    QByteArray m_waiting;       ///< The beginning of a request that is not whole.
    qsizetype m_passOn = 0;     ///< How much still belongs to a request that needs no look.
    bool m_isConnected = false; ///< Whether the client's greeting has gone by.
};

/// A second display of an X server, on which the server lacks one extension; all else is the same, windows
/// and pointer too. It ends every client's connection when it goes.
class DisplayWithoutExtension {
public:
    /// Throws std::runtime_error when no display number is free.
    DisplayWithoutExtension(const QString& realDisplay, QByteArray extension);
    ~DisplayWithoutExtension();
    DisplayWithoutExtension(const DisplayWithoutExtension&) = delete;
    DisplayWithoutExtension& operator=(const DisplayWithoutExtension&) = delete;

    QString displayName() const { return QStringLiteral(":%1").arg(m_number); }

private:
    struct Client {
        int client = -1;
        int server = -1;
        std::thread requests;
        std::thread answers;
    };
    static void forward(int from, int to, ExtensionHider* hider);
    bool take(int number);
    void accept();
    void serve(int client);

    QByteArray m_realSocket;
    QByteArray m_extension;
    int m_number = 0;
    int m_listener = -1;
    std::list<Client> m_clients; ///< The accepting thread's, while that runs.
    std::thread m_accepting;
};

} // namespace framora
