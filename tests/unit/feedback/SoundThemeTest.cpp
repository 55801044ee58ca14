#include "platform/desktop/SoundTheme.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace framora {
namespace {

class SoundThemeTest : public testing::Test {
protected:
    QString write(const QString& name, const QByteArray& content = "x") {
        QString path = folder.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path;
    }
    SoundTheme theme(const QString& name = QStringLiteral("freedesktop")) {
        return SoundTheme(
            {folder.filePath(QStringLiteral("user")), folder.filePath(QStringLiteral("system"))}, name);
    }

    QTemporaryDir folder;
};

TEST_F(SoundThemeTest, prefersTheUsersFolderToTheSystems) {
    const QString systems = write(QStringLiteral("system/sounds/freedesktop/stereo/bell.oga"));
    EXPECT_EQ(theme().find(QStringLiteral("bell")), systems);
    const QString users = write(QStringLiteral("user/sounds/freedesktop/stereo/bell.wav"));
    EXPECT_EQ(theme().find(QStringLiteral("bell")), users);
}

TEST_F(SoundThemeTest, fallsBackToTheMoreGeneralName) {
    const QString message = write(QStringLiteral("system/sounds/freedesktop/stereo/message.ogg"));
    EXPECT_EQ(theme().find(QStringLiteral("message-new-instant")), message);
    EXPECT_EQ(theme().find(QStringLiteral("complete")), QString());
    EXPECT_EQ(theme().find(QString()), QString());
}

TEST_F(SoundThemeTest, looksInWhatTheThemeInheritsAndThenInFreedesktop) {
    write(QStringLiteral("system/sounds/child/index.theme"),
          "[Sound Theme]\nInherits=parent\nDirectories=.\n");
    write(QStringLiteral("system/sounds/parent/index.theme"),
          "[Sound Theme]\nInherits=child\nDirectories=loud\n");
    const QString parents = write(QStringLiteral("system/sounds/parent/loud/bell.oga"));
    write(QStringLiteral("system/sounds/freedesktop/stereo/bell.oga"));
    const QString last = write(QStringLiteral("system/sounds/freedesktop/stereo/complete.oga"));
    EXPECT_EQ(theme(QStringLiteral("child")).find(QStringLiteral("bell")), parents);
    EXPECT_EQ(theme(QStringLiteral("child")).find(QStringLiteral("complete")), last);
}

TEST_F(SoundThemeTest, aThemeMaySilenceASound) {
    write(QStringLiteral("user/sounds/freedesktop/stereo/bell.disabled"));
    write(QStringLiteral("system/sounds/freedesktop/stereo/bell.oga"));
    EXPECT_EQ(theme().find(QStringLiteral("bell")), QString());
}

TEST(SoundThemeOfDesktop, hasEverySoundThatACaptureCanMake) {
    const SoundTheme theme = SoundTheme::ofDesktop();
    for (const char* name : {"complete", "message-new-instant", "screen-capture", "camera-shutter",
                             "device-added", "bell", "dialog-error", "message"})
        EXPECT_TRUE(theme.find(QLatin1String(name)).contains(QLatin1String(name))) << name;
}

} // namespace
} // namespace framora
