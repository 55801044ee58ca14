#include "platform/ProgramCommand.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <QStandardPaths>
#include <gtest/gtest.h>

namespace framora {
namespace {

/// The desktop entry as it is shipped.
class DesktopEntryTest : public testing::Test {
protected:
    static QString source(const char* path) {
        return QStringLiteral(FRAMORA_SOURCE_FOLDER "/") + QLatin1String(path);
    }
    static QByteArray contents(const QString& path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
        return file.readAll();
    }
    /// Values by "group/key".
    static QMap<QString, QString> values() {
        QMap<QString, QString> all;
        QString group;
        for (const QString& line : QString::fromUtf8(contents(source(path))).split(u'\n')) {
            if (line.startsWith(u'['))
                group = line.mid(1, line.size() - 2);
            else if (line.contains(u'='))
                all[group + u'/' + line.section(u'=', 0, 0)] = line.section(u'=', 1);
        }
        return all;
    }
    static constexpr char path[] = "packaging/org.framora.Framora.desktop";
};

TEST_F(DesktopEntryTest, isValidForThoseWhoReadIt) {
    const QString validator = QStandardPaths::findExecutable(QStringLiteral("desktop-file-validate"));
    if (validator.isEmpty())
        GTEST_SKIP() << "desktop-file-utils is not installed";
    QProcess check;
    check.setProcessChannelMode(QProcess::MergedChannels);
    check.start(validator, {source(path)});
    check.waitForFinished();
    EXPECT_EQ(check.exitCode(), 0) << check.readAll().toStdString();
}

TEST_F(DesktopEntryTest, itsActionsAreCommandsOfTheProgramByBusAndByCommandLine) {
    const auto entry = values();
    const QStringList actions =
        entry[QStringLiteral("Desktop Entry/Actions")].split(u';', Qt::SkipEmptyParts);
    EXPECT_EQ(actions.size(), 3);
    for (const QString& action : actions) {
        EXPECT_TRUE(commandOfName(action).has_value()) << action.toStdString();
        EXPECT_EQ(entry[QStringLiteral("Desktop Action %1/Exec").arg(action)],
                  QStringLiteral("framora --") + action);
    }
}

TEST_F(DesktopEntryTest, itsActionsHaveTheMenusNamesInEveryLanguage) {
    const auto entry = values();
    for (const auto& [table, locale] :
         {std::pair("en", ""), std::pair("de", "[de]"), std::pair("es", "[es]"), std::pair("fr", "[fr]"),
          std::pair("pt-BR", "[pt_BR]"), std::pair("ja", "[ja]"), std::pair("zh-Hans", "[zh_CN]")}) {
        const QString file = source("resources/strings/") + QLatin1String(table) + QStringLiteral(".json");
        const QJsonObject texts = QJsonDocument::fromJson(contents(file)).object();
        for (const auto& [action, key] :
             {std::pair("capture-area", "screenshot"), std::pair("capture-window", "window capture"),
              std::pair("settings", "preferences")}) {
            QString name = texts[QLatin1String(key)].toString();
            name = name.remove(u'…').trimmed();
            EXPECT_EQ(entry[QStringLiteral("Desktop Action %1/Name%2")
                                .arg(QLatin1String(action), QLatin1String(locale))],
                      name)
                << table;
        }
    }
}

} // namespace
} // namespace framora
