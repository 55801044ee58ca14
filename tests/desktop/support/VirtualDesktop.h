#pragma once

#include "desktop/support/DesktopDisplay.h"
#include "desktop/support/DesktopSession.h"

namespace framora {

enum class WindowManager { none, openbox, xfwm4 };

/// A tray: xfce4-panel hosts StatusNotifierItems, tint2 and trayer XEmbed icons.
enum class TrayHost { none, xfcePanel, tint2, trayer };

struct DesktopOptions {
    QSize size{1280, 800}; ///< Pixels of the one screen.
    int depth = 24;        ///< Bits of a pixel; screenshots need 24.
    WindowManager windowManager = WindowManager::openbox;
    bool compositor = false; ///< picom, with neither shadows nor fading of its own.
    TrayHost trayHost = TrayHost::none;
    bool sessionBus = true;
    bool accessibility = false; ///< The bus on which AccessibleTree finds controls.
    /// XFIXES, DAMAGE and the like are always there; an entry here goes to the server as `-extension NAME`.
    QStringList disabledExtensions;
};

/// A whole X desktop without a screen: its server, window manager, compositor and tray are private too.
class VirtualDesktop : public DesktopSession {
public:
    /// Returns when everything asked for answers; throws std::runtime_error when something does not come up.
    explicit VirtualDesktop(const DesktopOptions& options = {});
    ~VirtualDesktop();

    /// Windows, pictures, keys and the pointer.
    DesktopDisplay& display() { return *m_display; }
    QString displayName() const { return m_displayName; }

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

private:
    void startServer(const DesktopOptions& options);
    void writeConfiguration();

    QString m_displayName;
    std::unique_ptr<DesktopDisplay> m_display;
};

} // namespace framora
