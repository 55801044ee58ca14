#include "platform/desktop/FileResourceBundle.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

namespace framora {

FileResourceBundle::FileResourceBundle() {
    const QString installed =
        QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../share/framora"));
    m_resourcePath = QFileInfo(installed).isDir() ? installed : QStringLiteral(FRAMORA_RESOURCE_DIR);
}

std::optional<QUrl> FileResourceBundle::url(const QString& name, const QString& type,
                                            const QString& subdirectory) const {
    const QFileInfo file(QDir(m_resourcePath + u'/' + subdirectory), name + u'.' + type);
    if (!file.isFile())
        return std::nullopt;
    return QUrl::fromLocalFile(file.absoluteFilePath());
}

std::optional<QUrl> FileResourceBundle::urlAnywhere(const QString& name, const QString& type) const {
    QDirIterator files(m_resourcePath, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        files.next();
        if (files.fileName() == name + u'.' + type)
            return QUrl::fromLocalFile(files.fileInfo().absoluteFilePath());
    }
    return std::nullopt;
}

} // namespace framora
