#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <functional>
#include <memory>

namespace framora {

/// Keeps the program to one process for each user and display. The first start holds a lock, which the kernel
/// takes back when the process dies however it dies, and listens on a socket; a later start tells it so.
class SingleInstance final : public QObject {
    Q_OBJECT

public:
    /// `folder`: the user's runtime folder; `display`: what tells one desktop session from another.
    SingleInstance(const QString& folder, const QString& display);
    ~SingleInstance() override;

    /// Tells `message` to the one that runs, without becoming it. False when none runs, or it is ending.
    /// Needs no application yet.
    bool tellRunning(const QByteArray& message) const;
    /// True when this process is the one; false when another runs, which has been told `message` then. One
    /// that is ending is waited for, up to ten seconds. Without a writable folder there is nothing to hold,
    /// and every process is the one.
    bool acquire(const QByteArray& message = {});
    /// Hears no more of later starts, which wait for this process's end from now on. Happens by itself when
    /// the application quits.
    void endListening();
    /// The longest message; what is beyond it is not heard.
    static constexpr int longestMessage = 4096;
    /// Runs on the main thread of the one when somebody starts the program again, with what that one says.
    void onSecondStart(std::function<void(const QByteArray& message)> handler) {
        m_handler = std::move(handler);
    }

private:
    void listenForOthers();
    /// False when nobody listens. One that is merely busy hears of it later.
    bool tellTheOther(const QByteArray& message, int milliseconds) const;
    void accept();
    /// Reads what a later start says, as far as it has come. True when that was all of it.
    bool hear(int peer, QByteArray& message);
    void take(int peer, const QByteArray& message);

    QByteArray m_lockPath;
    QByteArray m_socketPath;
    int m_lock = -1;
    int m_socket = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::function<void(const QByteArray&)> m_handler;
};

} // namespace framora
