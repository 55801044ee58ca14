#include "platform/Localized.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

namespace framora {

namespace {

QJsonObject loadTable() {
    QFile file(QStringLiteral(":/framora/strings/en.json"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll()).object();
}

} // namespace

QString localized(const QString& key) {
    static const QJsonObject table = loadTable();
    return table.value(key).toString(key);
}

} // namespace framora
