#include "platform/desktop/SoundTheme.h"

#include "platform/x11/X11ThemeName.h"

#include <QFile>
#include <QSettings>
#include <QStandardPaths>

namespace framora {
namespace {

const QString fallbackTheme = QStringLiteral("freedesktop");

QStringList listIn(const QString& indexFile, const QString& key) {
    const QSettings index(indexFile, QSettings::IniFormat);
    return index.value(QStringLiteral("Sound Theme/") + key).toStringList();
}

} // namespace

SoundTheme::SoundTheme(QStringList dataFolders, QString theme)
    : m_dataFolders(std::move(dataFolders)), m_theme(std::move(theme)) {}

SoundTheme SoundTheme::ofDesktop() {
    const QString theme = x11SoundThemeName();
    // A name is a folder's; what would lead elsewhere is none.
    const bool isName = !theme.isEmpty() && !theme.contains(u'/') && !theme.startsWith(u'.');
    return SoundTheme(QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation),
                      isName ? theme : fallbackTheme);
}

QStringList SoundTheme::inheritance() const {
    QStringList themes{m_theme};
    for (int i = 0; i < themes.size(); ++i) {
        for (const QString& folder : m_dataFolders) {
            const QString index =
                folder + QStringLiteral("/sounds/") + themes[i] + QStringLiteral("/index.theme");
            for (const QString& parent : listIn(index, QStringLiteral("Inherits")))
                if (!themes.contains(parent.trimmed()))
                    themes.append(parent.trimmed());
        }
    }
    themes.removeAll(fallbackTheme);
    themes.append(fallbackTheme);
    return themes;
}

QStringList SoundTheme::foldersOf(const QString& theme) const {
    QStringList folders;
    for (const QString& data : m_dataFolders) {
        const QString base = data + QStringLiteral("/sounds/") + theme;
        for (const QString& directory :
             listIn(base + QStringLiteral("/index.theme"), QStringLiteral("Directories")))
            folders.append(base + QLatin1Char('/') + directory.trimmed());
        // A theme's index may stand in another data folder than its files.
        const QString stereo = base + QStringLiteral("/stereo");
        if (!folders.contains(stereo))
            folders.append(stereo);
    }
    return folders;
}

QString SoundTheme::find(const QString& name) const {
    for (const QString& theme : inheritance()) {
        const QStringList folders = foldersOf(theme);
        for (QString wanted = name; !wanted.isEmpty();
             wanted = wanted.left(std::max(qsizetype(0), wanted.lastIndexOf(QLatin1Char('-'))))) {
            for (const QString& folder : folders) {
                const QString base = folder + QLatin1Char('/') + wanted;
                if (QFile::exists(base + QStringLiteral(".disabled")))
                    return {};
                for (const char* extension : {".oga", ".ogg", ".wav"}) {
                    QString file = base + QLatin1String(extension);
                    if (QFile::exists(file))
                        return file;
                }
            }
        }
    }
    return {};
}

} // namespace framora
