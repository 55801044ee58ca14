#include "platform/wayland/HostApplicationId.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

QString idIn(const char* lastPart) {
    return applicationIdOfControlGroup(
        QByteArray("0::/user.slice/user-1000.slice/user@1000.service/app.slice/") + lastPart + '\n');
}

TEST(HostApplicationIdTest, IsInTheNameOfTheUnitThatTheDesktopStartedUsIn) {
    const QString id = QStringLiteral("org.framora.Framora");
    EXPECT_EQ(idIn("app-gnome-org.framora.Framora-12345.scope"), id);
    EXPECT_EQ(idIn("app-org.framora.Framora-12345.scope"), id);
    EXPECT_EQ(idIn("app-org.framora.Framora@autostart.service"), id);
    EXPECT_EQ(idIn("app-kde-org.framora.Framora@f3a0.service"), id);
    EXPECT_EQ(idIn("app-org.framora.Framora.service"), id);
}

TEST(HostApplicationIdTest, IsReadBackFromItsEscapes) {
    EXPECT_EQ(idIn("app-gnome-some\\x2dprogram-7.scope"), QStringLiteral("some-program"));
}

TEST(HostApplicationIdTest, IsNoneForWhatWasStartedOtherwise) {
    for (const char* unit : {"vte-spawn-0a1b.scope", "session-2.scope", "app-12345.scope", "app.slice",
                             "init.scope", "gnome-session-manager@gnome.service", ""})
        EXPECT_EQ(idIn(unit), QString()) << unit;
    EXPECT_EQ(applicationIdOfControlGroup({}), QString());
    EXPECT_EQ(applicationIdOfControlGroup("0::/\n"), QString());
}

TEST(HostApplicationIdTest, IsSystemdsAmongSeveralHierarchies) {
    EXPECT_EQ(
        applicationIdOfControlGroup("12:pids:/user.slice/app-a-b-1.scope\n"
                                    "1:name=systemd:/user.slice/app-gnome-org.framora.Framora-9.scope\n"),
        QStringLiteral("org.framora.Framora"));
}

} // namespace
} // namespace framora
