#include "platform/desktop/pictures/KdeConfig.h"

#include "platform/desktop/pictures/SettingsFile.h"

namespace framora {
namespace {

QString unescaped(QStringView text) {
    QString result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != u'\\' || i + 1 == text.size()) {
            result += text[i];
            continue;
        }
        const QChar next = text[++i];
        result += next == u's'   ? QChar(u' ')
                  : next == u't' ? QChar(u'\t')
                  : next == u'n' ? QChar(u'\n')
                                 : next;
    }
    return result;
}

} // namespace

KdeConfig::KdeConfig(const QString& path) {
    const QString text = QString::fromUtf8(readSettingsFile(path));
    QString group;
    for (QStringView line : QStringView(text).split(u'\n')) {
        line = line.trimmed();
        if (line.startsWith(u'[') && line.endsWith(u']')) {
            group = line.sliced(1, line.size() - 2).toString();
        } else if (const qsizetype equals = line.indexOf(u'='); equals > 0 && !line.startsWith(u'#')) {
            QStringView key = line.first(equals).trimmed();
            // Marks of the key itself: "Image[$e]".
            if (const qsizetype mark = key.indexOf(QLatin1String("[$")); mark > 0)
                key = key.first(mark);
            m_groups[group][key.toString()] = unescaped(line.sliced(equals + 1).trimmed());
        }
    }
}

QString KdeConfig::value(const QString& group, const QString& key, const QString& otherwise) const {
    return m_groups.value(group).value(key, otherwise);
}

} // namespace framora
