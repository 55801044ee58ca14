#include "platform/wayland/WaylandPermissions.h"

#include "platform/desktop/Installation.h"
#include "platform/wayland/HostApplicationId.h"
#include "platform/wayland/ScreenshotPermission.h"
#include "platform/wayland/WaylandConnection.h"
#include "platform/wayland/WaylandWindowExport.h"

#include <QCoreApplication>
#include <QProcess>

namespace framora {
namespace {

/// The capture tool beside this program, which ends by itself.
void runTool(const QStringList& arguments, const QString& activationToken,
             std::function<void(int exitCode)> ended) {
    auto* const process = new QProcess(QCoreApplication::instance());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (!activationToken.isEmpty())
        environment.insert(QStringLiteral("XDG_ACTIVATION_TOKEN"), activationToken);
    process->setProcessEnvironment(environment);
    process->setProcessChannelMode(QProcess::ForwardedChannels);
    // Either comes, and only once: nothing finishes that did not start.
    const auto done = [process, ended = std::move(ended)](int exitCode) {
        process->deleteLater();
        ended(exitCode);
    };
    QObject::connect(process, &QProcess::finished, process,
                     [done](int exitCode, QProcess::ExitStatus status) {
                         done(status == QProcess::NormalExit ? exitCode : -1);
                     });
    QObject::connect(process, &QProcess::errorOccurred, process, [done](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            done(-1);
    });
    process->start(privateExecutable(QStringLiteral("framora-screencapture")), arguments);
}

} // namespace

WaylandPermissions::WaylandPermissions(const WaylandConnection& connection, PortalShortcuts& shortcuts)
    : m_shortcuts(shortcuts) {
    if (!connection.offers("zwlr_screencopy_manager_v1") || !connection.offers("zwlr_layer_shell_v1"))
        m_screenshots = std::make_unique<ScreenshotPermission>(
            ScreenshotPermission::Services{QDBusConnection::sessionBus(), hostApplicationId(), runTool});
}

WaylandPermissions::~WaylandPermissions() = default;

bool WaylandPermissions::canCaptureScreen() {
    return !m_screenshots || m_screenshots->state() == ScreenshotPermission::State::granted;
}

bool WaylandPermissions::requestScreenCapture(QWindow* window) {
    if (!m_screenshots || m_screenshots->state() == ScreenshotPermission::State::denied)
        return false;
    const auto exported = std::make_shared<WaylandWindowExport>(window);
    // The window stays exported as long as the desktop asks.
    m_screenshots->ask(exported->portalName(), exported->activationToken(), [exported] {});
    return true;
}

QString WaylandPermissions::commandToForgetDenial() {
    return m_screenshots ? m_screenshots->commandToForget() : QString();
}

} // namespace framora
