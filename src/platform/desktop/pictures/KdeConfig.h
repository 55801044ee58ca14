#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

namespace framora {

/// A configuration file of KDE: groups of keys, whose names nest as "[Containments][1][General]".
class KdeConfig {
public:
    /// Empty when the file cannot be read.
    explicit KdeConfig(const QString& path);

    /// As they stand in the file, without the outer brackets: "Containments][1][General".
    QStringList groups() const { return m_groups.keys(); }
    QString value(const QString& group, const QString& key, const QString& otherwise = {}) const;

private:
    QMap<QString, QMap<QString, QString>> m_groups;
};

} // namespace framora
