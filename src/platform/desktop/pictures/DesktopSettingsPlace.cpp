#include "platform/desktop/pictures/DesktopSettingsPlace.h"

#include "platform/desktop/Installation.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QProcess>

namespace framora {
namespace {

QStringList folderList(const char* variable, const QString& otherwise) {
    const QString value = qEnvironmentVariable(variable);
    return (value.isEmpty() ? otherwise : value).split(u':', Qt::SkipEmptyParts);
}

QString folder(const char* variable, const QString& inHome) {
    const QString value = qEnvironmentVariable(variable);
    return value.isEmpty() ? QDir::home().filePath(inHome) : value;
}

} // namespace

DesktopSettingsPlace DesktopSettingsPlace::ofThisSession() {
    DesktopSettingsPlace place;
    place.configFolder = folder("XDG_CONFIG_HOME", QStringLiteral(".config"));
    place.systemConfig = folderList("XDG_CONFIG_DIRS", QStringLiteral("/etc/xdg"));
    place.dataFolders = QStringList(folder("XDG_DATA_HOME", QStringLiteral(".local/share"))) +
                        folderList("XDG_DATA_DIRS", QStringLiteral("/usr/local/share:/usr/share"));
    place.now = QDateTime::currentDateTime();
    place.schemaValue = [](const QString& schema, const QString& key) { return valueOfSchema(schema, key); };
    return place;
}

std::optional<QString> DesktopSettingsPlace::valueOfSchema(const QString& schema, const QString& key,
                                                           const std::stop_token& stop) {
    // Asked of a small program: the library that knows would stay in this one with its threads.
    constexpr int patience = 1000; // ms
    constexpr int step = 20;
    QProcess process;
    if (stop.stop_requested())
        return {};
    process.start(privateExecutable(QStringLiteral("framora-desktop-setting")), {schema, key});
    const QDeadlineTimer deadline(patience);
    while (!process.waitForFinished(step) && process.state() != QProcess::NotRunning) {
        if (!deadline.hasExpired() && !stop.stop_requested())
            continue;
        process.kill();
        process.waitForFinished(patience);
        return {};
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return {};
    return QString::fromUtf8(process.readAllStandardOutput());
}

} // namespace framora
