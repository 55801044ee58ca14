#include "platform/StringTables.h"

#include <array>

namespace framora {
namespace {

struct Table {
    const char* name;
    const char* language; ///< Without script or country: a relative is better than another language.
};

constexpr std::array tables{
    Table{"en", "en"},    Table{"es", "es"}, Table{"de", "de"},      Table{"fr", "fr"},
    Table{"pt-BR", "pt"}, Table{"ja", "ja"}, Table{"zh-Hans", "zh"},
};

/// The traditional script is not read by everyone who reads the simplified one.
bool isTraditionalChinese(const QString& language) {
    for (const char* part : {"Hant", "TW", "HK", "MO"})
        if (language.split(u'-').contains(QLatin1String(part)))
            return true;
    return false;
}

} // namespace

QStringList stringTableNames() {
    QStringList names;
    for (const Table& table : tables)
        names << QString::fromLatin1(table.name);
    return names;
}

QString stringTableFor(const QStringList& uiLanguages) {
    bool readsTraditional = false;
    for (QString language : uiLanguages) {
        language.replace(u'_', u'-');
        readsTraditional = readsTraditional || isTraditionalChinese(language);
        const QString base = language.section(u'-', 0, 0);
        for (const Table& table : tables) {
            if (base != QLatin1String(table.language))
                continue;
            // "zh" alone follows the more exact names of the same locale.
            if (base == QLatin1String("zh") && readsTraditional)
                break;
            return QString::fromLatin1(table.name);
        }
    }
    return QString::fromLatin1(tables.front().name);
}

} // namespace framora
