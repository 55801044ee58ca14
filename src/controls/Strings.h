#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace framora {

/// The program's texts by their localisation keys.
class Strings : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;
    Q_INVOKABLE static QString localized(const QString& key);
};

} // namespace framora
