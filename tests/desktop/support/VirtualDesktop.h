#pragma once

#include "desktop/support/ChildProcess.h"
#include "desktop/support/DesktopDisplay.h"

#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <vector>

namespace framora {

enum class WindowManager { none, openbox, xfwm4 };

/// A tray: xfce4-panel hosts StatusNotifierItems, tint2 and trayer XEmbed icons.
enum class TrayHost { none, xfcePanel, tint2, trayer };

struct DesktopOptions {
    QSize size{1280, 800}; ///< Pixels of the one screen.
    WindowManager windowManager = WindowManager::openbox;
    bool compositor = false; ///< picom, with neither shadows nor fading of its own.
    TrayHost trayHost = TrayHost::none;
    bool sessionBus = true;
    bool accessibility = false; ///< The bus on which AccessibleTree finds controls.
    /// XFIXES, DAMAGE and the like are always there; an entry here goes to the server as `-extension NAME`.
    QStringList disabledExtensions;
};

/// A whole X desktop without a screen: its server, bus, window manager, compositor and tray are private, and
/// so are the home and runtime folders of what runs on it. Everything that was started here ends with it.
class VirtualDesktop {
public:
    /// Returns when everything asked for answers; throws std::runtime_error when something does not come up.
    explicit VirtualDesktop(const DesktopOptions& options = {});
    ~VirtualDesktop();
    VirtualDesktop(const VirtualDesktop&) = delete;
    VirtualDesktop& operator=(const VirtualDesktop&) = delete;

    /// Windows, pictures, keys and the pointer.
    DesktopDisplay& display() { return *m_display; }
    QString displayName() const { return m_displayName; }
    QString busAddress() const { return m_environment.value(QStringLiteral("DBUS_SESSION_BUS_ADDRESS")); }

    /// What a program started here finds: the display, the bus, private folders and little else.
    QProcessEnvironment environment() const { return m_environment; }
    void setEnvironmentVariable(const QString& name, const QString& value) {
        m_environment.insert(name, value);
    }

    /// Starts a program; it is ended with the desktop at the latest. The desktop owns it. Throws
    /// std::runtime_error when it cannot be launched.
    ChildProcess& start(const QString& program, const QStringList& arguments = {});

    /// Runs a program to its end and returns its standard output; empty after `timeoutMs`.
    QByteArray run(const QString& program, const QStringList& arguments, int timeoutMs = 10000,
                   const QByteArray& input = {});

    /// A tray, compositor or window manager that comes later.
    ChildProcess& startTrayHost(TrayHost host);
    ChildProcess& startCompositor();
    ChildProcess& startWindowManager(WindowManager manager);

    /// CLIPBOARD as `target`, empty when nobody owns it or serves that target.
    QByteArray clipboard(const QString& target = QStringLiteral("image/png"));
    QImage clipboardImage();
    QStringList clipboardTargets();
    /// Becomes the clipboard's owner through another program, which serves it until another owner comes.
    void setClipboard(const QByteArray& bytes, const QString& target);

    QString homePath() const { return m_folder.filePath(QStringLiteral("home")); }
    QString configPath() const { return m_folder.filePath(QStringLiteral("config")); }
    QString runtimePath() const { return m_folder.filePath(QStringLiteral("runtime")); }
    /// A place for a test's own files, gone with the desktop.
    QString scratchPath() const { return m_folder.filePath(QStringLiteral("scratch")); }

    /// Every process that carries this desktop's environment, also those whose parent is gone.
    std::vector<qint64> processes() const;

    /// Waits for `condition`, with this process's own events served meanwhile. False after the time limit.
    static bool waitFor(const std::function<bool()>& condition, int timeoutMs = 10000);

private:
    void startServer(const DesktopOptions& options);
    void startBus();
    void startAccessibility();
    bool serviceIsOnBus(const QString& name) const;
    void writeConfiguration();
    void endEverything();
    void requireSoon(const char* what, const std::function<bool()>& condition);

    QTemporaryDir m_folder;
    QString m_marker;
    QString m_displayName;
    QProcessEnvironment m_environment;
    std::vector<std::unique_ptr<ChildProcess>> m_children;
    std::unique_ptr<DesktopDisplay> m_display;
};

} // namespace framora
