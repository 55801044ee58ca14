#include "platform/desktop/Installation.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace framora {

namespace {

/// `installedFolder` is relative to the program's own.
QString besideOrIn(const QString& installedFolder, const QString& file) {
    const QDir own(QCoreApplication::applicationDirPath());
    const QString beside = own.filePath(file);
    return QFileInfo::exists(beside) ? beside : QDir::cleanPath(own.filePath(installedFolder + u'/' + file));
}

} // namespace

QString privateExecutable(const QString& name) {
    return besideOrIn(QStringLiteral(FRAMORA_EXECUTABLE_DIR), name);
}

QString modulePath(const QString& name) {
    return besideOrIn(QStringLiteral(FRAMORA_MODULE_DIR), name + QStringLiteral(".so"));
}

} // namespace framora
