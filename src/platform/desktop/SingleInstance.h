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

    /// True when this process is the one; false when another runs, which has been told then. One that is
    /// ending is waited for, up to ten seconds. Without a writable folder there is nothing to hold, and every
    /// process is the one.
    bool acquire();
    /// Hears no more of later starts, which wait for this process's end from now on. Happens by itself when
    /// the application quits.
    void endListening();
    /// Runs on the main thread of the one when somebody starts the program again.
    void onSecondStart(std::function<void()> handler) { m_handler = std::move(handler); }

private:
    void listenForOthers();
    /// False when nobody listens. One that is merely busy hears of it later.
    bool tellTheOther(int milliseconds) const;

    QByteArray m_lockPath;
    QByteArray m_socketPath;
    int m_lock = -1;
    int m_socket = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::function<void()> m_handler;
};

} // namespace framora
