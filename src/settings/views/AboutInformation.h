#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace framora {

class ComponentVersions;

/// Which program this is, and what it runs on.
class AboutInformation final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the settings window")
    Q_PROPERTY(QString programName READ programName CONSTANT FINAL)
    Q_PROPERTY(QString version READ version CONSTANT FINAL)
    Q_PROPERTY(QString licence READ licence CONSTANT FINAL)
    /// What a report about a fault should say, a line each. What the helpers are made of comes in later.
    Q_PROPERTY(QString details READ details NOTIFY detailsChanged FINAL)

public:
    /// `components` outlives this.
    explicit AboutInformation(ComponentVersions& components, QObject* parent = nullptr);

    static QString programName();
    static QString version();
    static QString licence();
    QString details() const;
    /// Puts the details on the clipboard.
    Q_INVOKABLE void copy() const;

Q_SIGNALS:
    void detailsChanged();

private:
    QStringList m_components;
};

} // namespace framora
