#include "platform/desktop/DesktopPrivacyPanes.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace framora {
namespace {

/// A PATH whose programs write down how they were called.
class DesktopPrivacyPanesTest : public testing::Test {
protected:
    DesktopPrivacyPanesTest() { qputenv("PATH", QFile::encodeName(folder.path())); }
    ~DesktopPrivacyPanesTest() override { qputenv("PATH", m_path); }

    void install(const char* name) {
        QFile program(folder.filePath(QLatin1String(name)));
        ASSERT_TRUE(program.open(QIODevice::WriteOnly));
        program.write("#!/bin/sh\nprintf '%s' \"${0##*/} $*\" > '" + QFile::encodeName(called()) +
                      ".new'\n/bin/mv '" + QFile::encodeName(called()) + ".new' '" +
                      QFile::encodeName(called()) + "'\n");
        program.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    QString called() const { return folder.filePath(QStringLiteral("called")); }
    /// What was started last.
    QString takeCall() {
        QFile file(called());
        EXPECT_TRUE(QTest::qWaitFor([&] { return file.exists(); }, 10000));
        const QString call =
            file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).trimmed() : QString();
        file.remove();
        return call;
    }

    QTemporaryDir folder;

private:
    QByteArray m_path = qgetenv("PATH");
};

TEST_F(DesktopPrivacyPanesTest, opensThePageOfTheDesktopInUse) {
    install("gnome-control-center");
    install("xfce4-keyboard-settings");
    DesktopPrivacyPanes gnome(QStringLiteral("ubuntu:GNOME"));
    EXPECT_TRUE(gnome.hasPage(PrivacyPane::accessibility));
    EXPECT_TRUE(gnome.openPage(PrivacyPane::accessibility));
    EXPECT_EQ(takeCall(), QStringLiteral("gnome-control-center keyboard"));
    EXPECT_TRUE(gnome.openPage(PrivacyPane::screenCapture));
    EXPECT_EQ(takeCall(), QStringLiteral("gnome-control-center applications"));
    EXPECT_TRUE(gnome.openPrivacyOverview());
    EXPECT_EQ(takeCall(), QStringLiteral("gnome-control-center usage"));
    EXPECT_TRUE(gnome.openSettingsProgram());
    EXPECT_EQ(takeCall(), QStringLiteral("gnome-control-center"));
    DesktopPrivacyPanes xfce(QStringLiteral("XFCE"));
    EXPECT_TRUE(xfce.openPage(PrivacyPane::accessibility));
    EXPECT_EQ(takeCall(), QStringLiteral("xfce4-keyboard-settings"));
}

TEST_F(DesktopPrivacyPanesTest, aRouteThatADesktopLacksIsNone) {
    install("xfce4-settings-manager");
    DesktopPrivacyPanes xfce(QStringLiteral("XFCE"));
    EXPECT_FALSE(xfce.hasPage(PrivacyPane::accessibility));
    EXPECT_FALSE(xfce.hasPage(PrivacyPane::screenCapture));
    EXPECT_FALSE(xfce.openPage(PrivacyPane::accessibility)) << "not installed";
    EXPECT_FALSE(xfce.openPage(PrivacyPane::screenCapture)) << "no such page";
    EXPECT_FALSE(xfce.openPrivacyOverview());
    EXPECT_TRUE(xfce.openSettingsProgram());
    EXPECT_EQ(takeCall(), QStringLiteral("xfce4-settings-manager"));
}

TEST_F(DesktopPrivacyPanesTest, anUnknownDesktopHasNoRoutes) {
    install("gnome-control-center");
    for (const char* desktop : {"", "openbox", "GNOMEish"}) {
        DesktopPrivacyPanes panes{QString::fromLatin1(desktop)};
        EXPECT_FALSE(panes.openPage(PrivacyPane::accessibility)) << desktop;
        EXPECT_FALSE(panes.openSettingsProgram()) << desktop;
    }
}

} // namespace
} // namespace framora
