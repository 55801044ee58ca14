#include "desktop/settings/SettingsDesktop.h"
#include "desktop/support/DisplayWithoutExtension.h"

namespace framora {
namespace {

/// The very first start, on a server that gives nobody's keys away.
class FirstStartTest : public SettingsDesktop {
protected:
    FirstStartTest() { desktop.setEnvironmentVariable(QStringLiteral("DISPLAY"), poor.displayName()); }
    ~FirstStartTest() override { framora->end(); } // Before its display.
    bool opensByItself() {
        launch();
        return soon([&] { return isOpen(); }, 4000);
    }

    DisplayWithoutExtension poor{desktop.displayName(), "XInputExtension"};
};

TEST_F(FirstStartTest, withoutATrayItOpensThePreferencesOnceAndForAll) {
    EXPECT_TRUE(opensByItself());
    EXPECT_TRUE(soon([&] { return desktop.storedDefaults().contains("captureSound"); }));
    framora->end();
    EXPECT_FALSE(opensByItself());
    openSettings();
}

TEST_F(FirstStartTest, aTrayThatEmbedsItIsEnough) {
    desktop.startTrayHost(TrayHost::trayer);
    EXPECT_FALSE(opensByItself());
    EXPECT_TRUE(desktop.storedDefaults().isEmpty());
}

TEST_F(FirstStartTest, aTrayThatDrawsItIsEnough) {
    desktop.startTrayHost(TrayHost::xfcePanel);
    EXPECT_FALSE(opensByItself());
}

} // namespace
} // namespace framora
