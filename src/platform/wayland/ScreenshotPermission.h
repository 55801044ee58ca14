#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>

class QDBusPendingCallWatcher;

namespace framora {

/// Whether the desktop lets this program take pictures of the screen, as far as it has to ask anybody: by a
/// route that asks nobody, or else as the portals' permission store remembers the user's answer. Asks the bus
/// and the capture tool without waiting; what they said last is what is known.
class ScreenshotPermission final : public QObject {
    Q_OBJECT

public:
    enum class State {
        unknown, ///< the first answer is on its way
        granted,
        notAsked,
        denied, ///< and remembered: the desktop will not ask again
    };
    struct Services {
        QDBusConnection bus;   ///< the session's
        QString applicationId; ///< under which the portals know us; may be empty
        /// Starts the capture tool and later tells its exit code, -1 when it did not exit by itself.
        std::function<void(const QStringList& arguments, const QString& activationToken,
                           std::function<void(int exitCode)> ended)>
            runTool;
    };

    explicit ScreenshotPermission(Services services);

    /// The first call starts asking.
    State state();
    /// Has the desktop ask the user by a picture that nobody sees. False when that changes nothing: it is
    /// granted, denied for good, or being asked already.
    bool ask(const QString& parentWindow, const QString& activationToken, std::function<void()> answered);
    /// The command line that takes a remembered denial back; empty when there is none.
    QString commandToForget();

private:
    void start();
    void lookUp();
    void understand(const QDBusPendingCallWatcher& answer);

    Services m_services;
    bool m_started = false;
    bool m_asking = false;
    bool m_asksNobody = false;
    /// The desktop gave a picture but remembers nothing about it.
    bool m_gaveOne = false;
    State m_state = State::unknown;

private Q_SLOTS:
    void onStoreChanged(const QString& table, const QString& id);
};

} // namespace framora
