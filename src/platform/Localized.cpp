#include "platform/Localized.h"

#include "platform/StringTables.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>

namespace framora {

namespace {

QJsonObject loadTable() {
    const QString name = stringTableFor(QLocale::system().uiLanguages());
    QFile file(QStringLiteral(":/framora/strings/%1.json").arg(name));
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
