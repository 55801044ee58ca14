#pragma once

#include <QString>
#include <QStringList>

namespace framora {

/// Finds the files of the desktop's sound theme by the names of the freedesktop sound-naming standard.
class SoundTheme {
public:
    /// `dataFolders` hold "sounds" folders, the most important first.
    explicit SoundTheme(QStringList dataFolders, QString theme = QStringLiteral("freedesktop"));
    /// The theme that the desktop's settings name, in the user's and the system's data folders. Any thread
    /// may ask; what it waits for is the X server and the disk.
    static SoundTheme ofDesktop();

    /// The sound file of `name`, or of the more general name before its last dash, and so on; looked for in
    /// the theme, in what it inherits, and in "freedesktop". Empty when there is none, or the theme silences
    /// it.
    QString find(const QString& name) const;

private:
    QStringList inheritance() const;
    QStringList foldersOf(const QString& theme) const;

    QStringList m_dataFolders;
    QString m_theme;
};

} // namespace framora
