#include "desktop/path/DemoDesktop.h"
#include "desktop/path/FramoraDriver.h"
#include "support/PrintQt.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

/// What comes in while a capture is on screen.
class OpenCapturePathTest : public testing::Test {
protected:
    static DesktopOptions options() {
        DesktopOptions options;
        options.size = {1440, 900};
        options.accessibility = true;
        return options;
    }

    OpenCapturePathTest() : m_desktop(options()), m_driver(m_desktop) {
        display().setWallpaper(demoWallpaper(display().size()));
    }

    DesktopDisplay& display() { return m_desktop.display(); }
    bool preferencesAreOpen() { return display().windowTitled(QStringLiteral("Preferences")).has_value(); }
    /// Starts the program again; it hands over to the one that runs, and ends.
    void startAgain() {
        ChildProcess& second = m_desktop.start(FramoraDriver::program(QStringLiteral("framora")));
        EXPECT_TRUE(second.waitForExit());
        EXPECT_EQ(second.exitCode(), 0) << second.output().toStdString();
    }

    VirtualDesktop m_desktop;
    FramoraDriver m_driver;
};

TEST_F(OpenCapturePathTest, aSecondCaptureCannotStart) {
    m_driver.launch();
    m_driver.pressAreaShortcut();
    m_driver.waitForOverlay();
    ASSERT_EQ(m_driver.captureTools().size(), 1U);
    m_driver.pressAreaShortcut();
    m_driver.pressWindowShortcut();
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return m_driver.captureTools().size() > 1; }, 500));
    display().key({"Escape"});
    m_driver.waitForNoOverlay();
    // And what was pressed meanwhile does not start one afterwards.
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return m_driver.overlay().has_value(); }, 700));
}

TEST_F(OpenCapturePathTest, aSecondStartOfTheProgramIsDropped) {
    m_driver.launch();
    m_driver.pressAreaShortcut();
    m_driver.waitForOverlay();
    startAgain();
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return preferencesAreOpen(); }, 700));
    EXPECT_TRUE(m_driver.overlay()) << "the capture goes on";
    m_driver.selectArea(QRect(300, 300, 100, 80));
    m_driver.waitForInteractiveToast();
    EXPECT_EQ(m_desktop.clipboardImage().size(), QSize(100, 80));
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return preferencesAreOpen(); }, 700))
        << "nor is it made up for afterwards";

    // At any other time it brings the preferences.
    startAgain();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return preferencesAreOpen(); }));
}

} // namespace
} // namespace framora
