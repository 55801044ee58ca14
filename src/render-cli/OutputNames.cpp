#include "render-cli/OutputNames.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>

namespace framora {

OutputNames outputNames(const QStringList& images, const QString& folder) {
    OutputNames names;
    QHash<QString, QString> owners;
    QHash<QString, QString> files; // where each image really lies
    for (const QString& image : images)
        if (image != u"-")
            files.insert(QFileInfo(image).canonicalFilePath(), image);
    files.remove(QString()); // what is missing
    for (const QString& image : images) {
        const QString base = image == u"-" ? QStringLiteral("stdin") : QFileInfo(image).completeBaseName();
        // A name such as ".png" has nothing before its extension.
        const QString name = (base.isEmpty() ? QFileInfo(image).fileName() : base) + QStringLiteral(".png");
        if (const auto owner = owners.constFind(name); owner != owners.constEnd()) {
            names.error =
                QStringLiteral("'%1' and '%2' would both be written to %3").arg(*owner, image, name);
            return names;
        }
        owners.insert(name, image);
        const QString path = QDir(folder).filePath(name);
        if (const auto file = files.constFind(QFileInfo(path).canonicalFilePath());
            file != files.constEnd()) {
            names.error =
                QStringLiteral("'%1' would be replaced by a picture; choose another folder than '%2'")
                    .arg(*file, folder);
            return names;
        }
        names.paths << path;
    }
    return names;
}

} // namespace framora
