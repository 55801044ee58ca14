#include "platform/desktop/pictures/DesktopSettingsPlace.h"

#include "platform/desktop/Installation.h"

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

/// Asked of a small program: the library that knows would stay in this one with its threads.
std::optional<QString> valueOfSchema(const QString& schema, const QString& key) {
    constexpr int patience = 5000; // ms
    QProcess process;
    process.start(privateExecutable(QStringLiteral("framora-desktop-setting")), {schema, key});
    if (!process.waitForFinished(patience)) {
        process.kill();
        process.waitForFinished(patience);
        return {};
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return {};
    return QString::fromUtf8(process.readAllStandardOutput());
}

} // namespace

DesktopSettingsPlace DesktopSettingsPlace::ofThisSession() {
    DesktopSettingsPlace place;
    place.configFolder = folder("XDG_CONFIG_HOME", QStringLiteral(".config"));
    place.systemConfig = folderList("XDG_CONFIG_DIRS", QStringLiteral("/etc/xdg"));
    place.dataFolders = QStringList(folder("XDG_DATA_HOME", QStringLiteral(".local/share"))) +
                        folderList("XDG_DATA_DIRS", QStringLiteral("/usr/local/share:/usr/share"));
    place.now = QDateTime::currentDateTime();
    place.schemaValue = valueOfSchema;
    return place;
}

} // namespace framora
