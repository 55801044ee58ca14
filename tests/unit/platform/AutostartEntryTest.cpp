#include "platform/desktop/AutostartEntry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace framora {
namespace {

class AutostartEntryTest : public testing::Test {
protected:
    QString file() const {
        return folder.filePath(QStringLiteral("config/autostart/org.framora.Framora.desktop"));
    }
    QString systemFolder() const { return folder.filePath(QStringLiteral("etc")); }
    QString makeProgram(const QString& name) {
        QString path = folder.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile script(path);
        EXPECT_TRUE(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\n");
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    }
    AutostartEntry entry(const QString& startedProgram) {
        return AutostartEntry(file(), {systemFolder()}, startedProgram);
    }
    AutostartEntry entry() { return entry(program); }
    static void write(const QString& path, const QByteArray& text) {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    QByteArray text() const {
        QFile entryFile(file());
        return entryFile.open(QIODevice::ReadOnly) ? entryFile.readAll() : QByteArray();
    }

    QTemporaryDir folder;
    QString program = makeProgram(QStringLiteral("framora"));
};

TEST_F(AutostartEntryTest, isOffWithoutAFileAndMakingItAgainIsAllItTakes) {
    EXPECT_FALSE(entry().isEnabled());
    EXPECT_TRUE(entry().setEnabled(true));
    EXPECT_TRUE(entry().isEnabled());
    EXPECT_TRUE(text().contains("\nExec=\"" + program.toUtf8() + "\"\n")) << text().toStdString();
    EXPECT_TRUE(text().contains("Type=Application\n"));
    EXPECT_TRUE(entry().setEnabled(false));
    EXPECT_FALSE(entry().isEnabled());
    EXPECT_FALSE(QFile::exists(file()));
    EXPECT_EQ(QFileInfo(file()).dir().entryList(QDir::Files).size(), 0) << "nothing is left beside it";
}

TEST_F(AutostartEntryTest, aPipeInItsPlaceIsNotWaitedFor) {
    QDir().mkpath(QFileInfo(file()).path());
    ASSERT_EQ(mkfifo(QFile::encodeName(file()).constData(), 0600), 0);
    EXPECT_FALSE(entry().isEnabled());
    entry().followProgram();
    EXPECT_TRUE(entry().setEnabled(true));
    EXPECT_TRUE(entry().isEnabled());
}

TEST_F(AutostartEntryTest, isValidForThoseWhoReadIt) {
    const QString validator = QStandardPaths::findExecutable(QStringLiteral("desktop-file-validate"));
    if (validator.isEmpty())
        GTEST_SKIP() << "desktop-file-utils is not installed";
    for (const char* name : {"framora", "a folder/fra mora", "100%/$HOME/`x`/back\\slash/quo\"te"}) {
        ASSERT_TRUE(entry(makeProgram(QString::fromUtf8(name))).setEnabled(true));
        QProcess check;
        check.setProcessChannelMode(QProcess::MergedChannels);
        check.start(validator, {file()});
        check.waitForFinished();
        EXPECT_EQ(check.exitCode(), 0) << check.readAll().toStdString();
    }
}

TEST_F(AutostartEntryTest, whatADesktopSwitchedOffCountsAsOff) {
    const QByteArray on = "[Desktop Entry]\nType=Application\nName=Framora\nExec=framora\n";
    for (const auto& [lines, isOn] :
         std::vector<std::pair<QByteArray, bool>>{{"", true},
                                                  {"Hidden=false\n", true},
                                                  {"Hidden=true\n", false},
                                                  {"Hidden = true \n", false},
                                                  {"X-GNOME-Autostart-enabled=true\n", true},
                                                  {"X-GNOME-Autostart-enabled=false\n", false},
                                                  {"#Hidden=true\n", true},
                                                  {"[Desktop Action x]\nHidden=true\n", true}}) {
        write(file(), on + lines);
        EXPECT_EQ(entry().isEnabled(), isOn) << lines.toStdString();
    }
    for (const char* damaged :
         {"", "no entry", "[Desktop Entry]\nName=Framora\n", "[Other]\nExec=framora\n"}) {
        write(file(), damaged);
        EXPECT_FALSE(entry().isEnabled()) << damaged;
    }
}

TEST_F(AutostartEntryTest, switchingItOnAgainKeepsWhatOthersWrote) {
    write(file(),
          "# mine\n[Desktop Entry]\nType=Application\nName[de]=Bilder\nExec=/old\nHidden=true\n"
          "X-GNOME-Autostart-enabled=false\nX-GNOME-Autostart-Delay=20\n\n[Desktop Action x]\nExec=x\n");
    EXPECT_TRUE(entry().setEnabled(true));
    EXPECT_EQ(text(), "# mine\n[Desktop Entry]\nType=Application\nName[de]=Bilder\nExec=\"" +
                          program.toUtf8() +
                          "\"\nX-GNOME-Autostart-enabled=true\nX-GNOME-Autostart-Delay=20\n\n"
                          "[Desktop Action x]\nExec=x\n");
}

TEST_F(AutostartEntryTest, followsAProgramThatMovedAndLeavesOneThatStillStandsAlone) {
    for (const char* name : {"framora-old", "old place/100% $x `y` \\ \"z\""}) {
        const QString old = makeProgram(QString::fromUtf8(name));
        ASSERT_TRUE(entry(old).setEnabled(true));
        const QByteArray before = text();
        entry().followProgram();
        EXPECT_EQ(text(), before) << "the other one is still there";
        ASSERT_TRUE(QFile::remove(old));
        entry().followProgram();
        EXPECT_TRUE(text().contains("\nExec=\"" + program.toUtf8() + "\"\n")) << text().toStdString();
        EXPECT_TRUE(entry().isEnabled());
    }
}

TEST_F(AutostartEntryTest, anEntryThatIsOffIsNotFollowedAndNoneIsNotMade) {
    entry().followProgram();
    EXPECT_FALSE(QFile::exists(file()));
    const QByteArray off = "[Desktop Entry]\nExec=/gone\nHidden=true\n";
    write(file(), off);
    entry().followProgram();
    EXPECT_EQ(text(), off);
}

TEST_F(AutostartEntryTest, aSystemsEntryCountsUntilTheUserHasOneAndCanBeHidden) {
    write(systemFolder() + QStringLiteral("/org.framora.Framora.desktop"), "[Desktop Entry]\nExec=framora\n");
    EXPECT_TRUE(entry().isEnabled());
    EXPECT_TRUE(entry().setEnabled(false));
    EXPECT_FALSE(entry().isEnabled());
    EXPECT_TRUE(text().contains("Hidden=true"));
    EXPECT_TRUE(entry().setEnabled(true));
    EXPECT_TRUE(entry().isEnabled());
}

TEST_F(AutostartEntryTest, whereNothingCanBeWrittenItStaysAsItWas) {
    write(folder.filePath(QStringLiteral("config")), "a file in the folder's place");
    EXPECT_FALSE(entry().setEnabled(true));
    EXPECT_FALSE(entry().isEnabled());
}

} // namespace
} // namespace framora
