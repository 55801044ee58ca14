#include "desktop/settings/SettingsDesktop.h"
#include "desktop/support/DisplayWithoutExtension.h"

namespace framora {
namespace {

class PermissionsSectionTest : public SettingsDesktop {
protected:
    bool shows(const char* name, const char* role) {
        AccessibleTree tree(desktop.busAddress());
        return tree.find(QString(), QString::fromUtf8(name), QLatin1String(role)).has_value();
    }
};

TEST_F(PermissionsSectionTest, aServerWithoutRawKeysIsToldInTheFormWithAButtonToAllowThem) {
    const DisplayWithoutExtension poor(desktop.displayName(), "XInputExtension");
    desktop.setEnvironmentVariable(QStringLiteral("DISPLAY"), poor.displayName());
    launch();
    openSettings();
    EXPECT_EQ(driver.control(QStringLiteral("Permissions")).role, QStringLiteral("heading"));
    EXPECT_TRUE(shows("Keyboard Shortcuts", "panel"));
    EXPECT_TRUE(driver.control(QStringLiteral("Allow…"), QStringLiteral("push button")).enabled);
    EXPECT_TRUE(shows("Allowed", "label")) << "pictures of the screen can be taken";
    EXPECT_TRUE(framora->isRunning());
    // The poor program goes before its display.
    framora->end();
}

TEST_F(PermissionsSectionTest, aFullServerHasNothingToAllow) {
    launch();
    openSettings();
    driver.control(QStringLiteral("Global Shortcut"), QStringLiteral("push button"));
    EXPECT_FALSE(shows("Permissions", ""));
    EXPECT_FALSE(shows("Allow…", ""));
}

} // namespace
} // namespace framora
