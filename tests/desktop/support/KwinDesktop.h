#pragma once

#include "desktop/support/DesktopSession.h"
#include "desktop/support/KwinInput.h"

#include <QImage>
#include <QSize>

#include <memory>

namespace framora {

struct KwinOptions {
    QSize size{1280, 800}; ///< Of each output, in logical pixels.
    double scale = 1;
    int outputs = 1; ///< Side by side.
    bool xwayland = false;
    bool accessibility = false; ///< The bus on which AccessibleTree finds controls.
    bool portal = true;         ///< xdg-desktop-portal with KDE's backend and the permission store.
    /// Whether every program may take pictures of the screen. Otherwise only those whose desktop entry says
    /// so, as on a real desktop; screenshot() fails then.
    bool everyoneMayCapture = true;
};

/// KWin as a Wayland compositor without a screen, on a private bus. Everything that was started here ends
/// with it, as do the programs that were started on its bus.
class KwinDesktop : public DesktopSession {
public:
    /// Returns when everything asked for answers; throws std::runtime_error when something does not come up.
    explicit KwinDesktop(const KwinOptions& options = {});
    ~KwinDesktop();

    KwinInput& input() { return *m_input; }
    /// The compositor's socket, by its whole path.
    QString socketPath() const;

    /// All outputs as they are composed, in device pixels; a null image when KWin refuses.
    QImage screenshot();
    /// The same when nothing on them changes any more.
    QImage settledScreenshot() {
        return settled([this] { return screenshot(); });
    }

    /// Where desktop entries of this session go.
    QString applicationsPath() const;
    /// Writes a desktop entry and makes KWin know it.
    void installDesktopEntry(const QString& fileName, const QByteArray& contents);

    /// The portal's front process, which programs talk to. May be ended and started again by a test.
    ChildProcess& portal() { return *m_portal; }
    ChildProcess& startPortal();
    /// KDE's process behind it, which shows the dialogs.
    ChildProcess& portalBackend() { return *m_backend; }

private:
    void startCompositor(const KwinOptions& options);
    void startPortalBackends();

    QString m_socket;
    ChildProcess* m_portal = nullptr;
    ChildProcess* m_backend = nullptr;
    std::unique_ptr<KwinInput> m_input;
};

} // namespace framora
