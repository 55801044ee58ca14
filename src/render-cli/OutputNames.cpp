#include "render-cli/OutputNames.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>

namespace framora {

OutputNames outputNames(const QStringList& images, const QString& folder) {
    OutputNames names;
    QHash<QString, QString> owners;
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
        names.paths << QDir(folder).filePath(name);
    }
    return names;
}

} // namespace framora
