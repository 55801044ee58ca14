#pragma once

#include "desktop/support/ChildProcess.h"

#include <QImage>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <vector>

namespace framora {

/// What every test desktop has, whatever shows its windows: private folders, a session bus of its own and the
/// programs that were started on it, which all end with it.
class DesktopSession {
public:
    DesktopSession(const DesktopSession&) = delete;
    DesktopSession& operator=(const DesktopSession&) = delete;

    QString busAddress() const { return m_environment.value(QStringLiteral("DBUS_SESSION_BUS_ADDRESS")); }

    /// What a program started here finds: the display, the bus, private folders and little else.
    QProcessEnvironment environment() const { return m_environment; }
    void setEnvironmentVariable(const QString& name, const QString& value) {
        m_environment.insert(name, value);
    }

    /// Starts a program; it is ended with the desktop at the latest. The desktop owns it. Throws
    /// std::runtime_error when it cannot be launched.
    ChildProcess& start(const QString& program, const QStringList& arguments = {},
                        const ChildProcess::Options& options = ChildProcess::Options());

    /// Runs a program to its end and returns its standard output; empty after `timeoutMs`.
    QByteArray run(const QString& program, const QStringList& arguments, int timeoutMs = 10000,
                   const QByteArray& input = {});

    QString homePath() const { return m_folder.filePath(QStringLiteral("home")); }
    QString configPath() const { return m_folder.filePath(QStringLiteral("config")); }
    QString runtimePath() const { return m_folder.filePath(QStringLiteral("runtime")); }
    /// What the programs find in TMPDIR.
    QString temporaryPath() const { return m_folder.filePath(QStringLiteral("temporary")); }
    /// A place for a test's own files, gone with the desktop.
    QString scratchPath() const { return m_folder.filePath(QStringLiteral("scratch")); }

    /// What Framora has in its store, in one line; empty where it has none.
    QByteArray storedDefaults() const;
    void storeDefaults(const QByteArray& contents) const;
    /// As for a user who has seen Framora before and changed nothing.
    void storeUnchangedSettings() const;

    /// Every process that carries this desktop's environment, also those whose parent is gone.
    std::vector<qint64> processes() const;

    /// What Framora's programs left: their processes that neither a test nor the bus daemon started, and the
    /// files in the Pictures and the temporary folder. What is just going gets `timeoutMs` for it.
    QStringList leftovers(int timeoutMs = 3000);

    /// True when the bus has an owner for the name.
    bool serviceIsOnBus(const QString& name) const;

    /// Waits for `condition`, with this process's own events served meanwhile. False after the time limit.
    static bool waitFor(const std::function<bool()>& condition, int timeoutMs = 10000);
    /// The first picture that is the same that many times in a row; after ten seconds the last one.
    static QImage settled(const std::function<QImage()>& takePicture, int times = 4);

protected:
    /// Makes the folders. `type` is what XDG_SESSION_TYPE says.
    explicit DesktopSession(const QString& type);
    ~DesktopSession();

    /// A bus daemon where only the programs of this desktop and those named in `services`, files of
    /// /usr/share/dbus-1/services, start by themselves.
    void startBus(const QStringList& services = {});
    void startAccessibility();
    /// Throws std::runtime_error when it does not come to be.
    static void requireSoon(const char* what, const std::function<bool()>& condition);
    /// Ends what was started, the last first. A desktop calls it before its connections' server goes.
    void endEverything();
    /// Writes a file, with the folders on its way.
    static void writeFile(const QString& path, const QByteArray& contents);

    QTemporaryDir m_folder;
    QProcessEnvironment m_environment;
    std::vector<std::unique_ptr<ChildProcess>> m_children;

private:
    QString m_marker;
};

} // namespace framora
