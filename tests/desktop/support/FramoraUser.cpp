#include "desktop/support/FramoraUser.h"

#include <stdexcept>

namespace framora {

QString FramoraUser::program(const QString& name) {
    return QStringLiteral(FRAMORA_PROGRAM_FOLDER "/") + name;
}

std::vector<qint64> FramoraUser::captureTools() {
    std::vector<qint64> tools;
    for (const qint64 child : m_framora->children())
        if (ChildProcess::nameOf(child).startsWith(QStringLiteral("framora-screen")))
            tools.push_back(child);
    return tools;
}

void FramoraUser::require(const QString& what, const std::function<bool()>& condition, int timeoutMs) {
    if (DesktopSession::waitFor(condition, timeoutMs))
        return;
    std::string message = "did not see: " + what.toStdString();
    if (m_framora && !m_framora->isRunning())
        message += " (Framora has ended)";
    if (m_framora)
        message += "\n" + m_framora->output().toStdString();
    throw std::runtime_error(message);
}

AccessibleNode FramoraUser::findControl(const QString& busAddress, const QString& name, const QString& role) {
    std::optional<AccessibleNode> found;
    require(QStringLiteral("the control \"%1\"").arg(name), [&] {
        if (!m_accessible)
            m_accessible = std::make_unique<AccessibleTree>(busAddress);
        found = m_accessible->find(QString(), name, role);
        return found.has_value();
    });
    return *found;
}

} // namespace framora
