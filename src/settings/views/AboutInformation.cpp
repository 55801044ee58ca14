#include "settings/views/AboutInformation.h"

#include "platform/ComponentVersions.h"
#include "platform/ProgramVersion.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPointer>
#include <QSysInfo>

namespace framora {

AboutInformation::AboutInformation(ComponentVersions& components, QObject* parent) : QObject(parent) {
    components.ask([self = QPointer(this)](const QStringList& versions) {
        if (!self)
            return;
        self->m_components = versions;
        Q_EMIT self->detailsChanged();
    });
}

QString AboutInformation::programName() {
    return QStringLiteral("Framora");
}

QString AboutInformation::version() {
    return programVersion();
}

QString AboutInformation::licence() {
    return QStringLiteral("MIT");
}

QString AboutInformation::details() const {
    QStringList lines{QStringLiteral("%1 %2").arg(programName(), version()),
                      QStringLiteral("Qt %1").arg(QLatin1String(qVersion()))};
    lines << m_components;
    lines << QStringLiteral("%1 (%2)").arg(QSysInfo::prettyProductName(), QSysInfo::currentCpuArchitecture());
    const QString desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP");
    const QString session = qEnvironmentVariable("XDG_SESSION_TYPE", QGuiApplication::platformName());
    lines << (desktop.isEmpty() ? session : QStringLiteral("%1, %2").arg(desktop, session));
    return lines.join(u'\n');
}

void AboutInformation::copy() const {
    QGuiApplication::clipboard()->setText(details());
}

} // namespace framora
