#include "platform/StringTables.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <gtest/gtest.h>
#include <map>
#include <set>

namespace framora {
namespace {

using Table = std::map<QString, QString>;

QString read(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromUtf8(file.readAll());
}

Table table(const QString& name) {
    const QString text = read(QStringLiteral(":/framora/strings/%1.json").arg(name));
    const QJsonObject object = QJsonDocument::fromJson(text.toUtf8()).object();
    // A key that stands twice would hide one of its texts.
    EXPECT_EQ(text.count(QStringLiteral("\": \"")), object.size()) << name.toStdString();
    Table result;
    for (auto it = object.begin(); it != object.end(); ++it)
        result[it.key()] = it->toString();
    return result;
}

/// Every source file of the program, with its text.
std::map<QString, QString> sources() {
    std::map<QString, QString> result;
    QDirIterator files(QStringLiteral(FRAMORA_SOURCE_FOLDER "/src"),
                       {QStringLiteral("*.cpp"), QStringLiteral("*.h"), QStringLiteral("*.qml")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        result[path] = read(path);
    }
    return result;
}

QStringList literalsIn(const QString& text) {
    static const QRegularExpression literal(QStringLiteral("\"([^\"]*)\""));
    QStringList found;
    for (auto it = literal.globalMatch(text); it.hasNext();)
        found << it.next().captured(1);
    return found;
}

TEST(StringTables, everyKeyThatTheProgramAsksForHasAText) {
    const Table english = table(QStringLiteral("en"));
    static const QRegularExpression call(
        QStringLiteral("\\blocalized\\(((?:[^()]|\\((?:[^()]|\\([^()]*\\))*\\))*)\\)"));
    std::set<QString> asked;
    for (const auto& [path, text] : sources())
        for (auto it = call.globalMatch(text); it.hasNext();)
            for (const QString& key : literalsIn(it.next().captured(1))) {
                asked.insert(key);
                EXPECT_TRUE(english.contains(key)) << key.toStdString() << " in " << path.toStdString();
            }
    EXPECT_GT(asked.size(), 60u) << "the calls are not recognised any more";
}

TEST(StringTables, noTextIsKeptThatNothingAsksFor) {
    QString all;
    for (const auto& [path, text] : sources())
        all += text;
    for (const auto& [key, text] : table(QStringLiteral("en")))
        EXPECT_TRUE(all.contains(u'"' + key + u'"')) << key.toStdString();
}

TEST(StringTables, noTextGoesAroundTheTables) {
    static const QRegularExpression other(QStringLiteral("\\b(qsTr|qsTrId|tr|QT_TR_NOOP)\\("));
    for (const auto& [path, text] : sources())
        EXPECT_FALSE(text.contains(other)) << path.toStdString();
}

TEST(StringTables, everyLanguageHasTheSameKeysAndPlaceholdersAndNoEmptyText) {
    const Table english = table(QStringLiteral("en"));
    ASSERT_GT(english.size(), 60u);
    static const QRegularExpression placeholder(QStringLiteral("%[0-9n]"));
    const auto placeholders = [](const QString& text) {
        std::multiset<QString> found;
        for (auto it = placeholder.globalMatch(text); it.hasNext();)
            found.insert(it.next().captured());
        return found;
    };
    for (const QString& name : stringTableNames()) {
        const Table translated = table(name);
        for (const auto& [key, text] : translated)
            EXPECT_TRUE(english.contains(key))
                << name.toStdString() << " has a key too many: " << key.toStdString();
        for (const auto& [key, text] : english) {
            const auto found = translated.find(key);
            ASSERT_NE(found, translated.end()) << name.toStdString() << " lacks " << key.toStdString();
            EXPECT_FALSE(found->second.trimmed().isEmpty())
                << name.toStdString() << ": " << key.toStdString();
            EXPECT_EQ(found->second, found->second.trimmed())
                << name.toStdString() << ": " << key.toStdString();
            EXPECT_EQ(placeholders(found->second), placeholders(text))
                << name.toStdString() << ": " << key.toStdString();
        }
    }
}

TEST(StringTables, areAsManyAsThereAreFiles) {
    QStringList files =
        QDir(QStringLiteral(FRAMORA_SOURCE_FOLDER "/resources/strings")).entryList(QDir::Files);
    files.replaceInStrings(QStringLiteral(".json"), QString());
    QStringList names = stringTableNames();
    names.sort();
    files.sort();
    EXPECT_EQ(names, files);
}

TEST(StringTables, theLanguageComesFromWhatTheUserUnderstands) {
    const auto chosen = [](const char* languages) {
        return stringTableFor(QString::fromLatin1(languages).split(u' ')).toStdString();
    };
    EXPECT_EQ(chosen("de-DE de"), "de");
    EXPECT_EQ(chosen("fr-CA fr"), "fr");
    EXPECT_EQ(chosen("es-MX es"), "es");
    EXPECT_EQ(chosen("ja-JP ja"), "ja");
    EXPECT_EQ(chosen("pt-BR pt"), "pt-BR");
    EXPECT_EQ(chosen("pt-PT pt"), "pt-BR");
    EXPECT_EQ(chosen("zh-CN zh-Hans-CN zh"), "zh-Hans");
    EXPECT_EQ(chosen("zh-TW zh-Hant-TW zh"), "en") << "another script";
    EXPECT_EQ(chosen("zh-Hant-HK zh"), "en");
    EXPECT_EQ(chosen("it-IT it fr-FR"), "fr") << "the second choice";
    EXPECT_EQ(chosen("en-GB en de"), "en");
    EXPECT_EQ(chosen("C"), "en");
    EXPECT_EQ(stringTableFor({}), QStringLiteral("en"));
    EXPECT_EQ(chosen("de_AT"), "de");
}

} // namespace
} // namespace framora
