#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>
#include <QString>
#include <functional>

namespace framora {

/// Keeps the program to one process for each user and display. The first start holds a lock and listens; a
/// later one tells it so.
class SingleInstance final : public QObject {
    Q_OBJECT

public:
    /// `folder`: the user's runtime folder; `display`: what tells one desktop session from another.
    SingleInstance(const QString& folder, const QString& display);

    /// True when this process is the one. A dead process's lock and socket are taken over. False when another
    /// runs; it has been told then.
    bool acquire();
    /// Runs on the main thread of the one when somebody starts the program again.
    void onSecondStart(std::function<void()> handler) { m_handler = std::move(handler); }

private:
    QString m_socketPath;
    QLockFile m_lock;
    QLocalServer m_server;
    std::function<void()> m_handler;
};

} // namespace framora
