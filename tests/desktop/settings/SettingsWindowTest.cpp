#include "desktop/settings/SettingsDesktop.h"

#include <QDir>
#include <algorithm>

namespace framora {
namespace {

class SettingsWindowDesktopTest : public SettingsDesktop {
protected:
    bool skipsTaskBar() {
        const auto states = display().cardinals(window()->id, "_NET_WM_STATE");
        return std::ranges::count(states, display().atom("_NET_WM_STATE_SKIP_TASKBAR")) > 0;
    }
    /// A task bar along the upper edge, with nothing on it but tasks.
    void startTaskBar() {
        const QString path = desktop.scratchPath() + QStringLiteral("/taskbar");
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        // Backgrounds come before what refers to them.
        file.write("rounded = 0\nborder_width = 0\nbackground_color = #2b2f36 100\n"
                   "rounded = 0\nborder_width = 0\nbackground_color = #aa3322 100\n"
                   "panel_items = T\npanel_size = 100% 28\npanel_position = top center horizontal\n"
                   "panel_background_id = 1\ntaskbar_padding = 0 0 0\ntask_text = 1\ntask_background_id = 2\n"
                   "task_active_background_id = 2\ntask_tooltip = 0\n");
        file.close();
        desktop.start(QStringLiteral("tint2"), {QStringLiteral("-c"), path});
        ASSERT_TRUE(soon([&] { return display().pixelAt({1270, 14}) == QColor(0x2b, 0x2f, 0x36); }));
    }
    bool taskBarShowsATask() {
        const QImage bar = display().screenshot(QRect(0, 0, 1280, 28));
        for (int x = 0; x < bar.width(); ++x)
            if (bar.pixelColor(x, 14) == QColor(0xaa, 0x33, 0x22))
                return true;
        return false;
    }
};

TEST_F(SettingsWindowDesktopTest, theDockSwitchTakesTheWindowOffARealTaskBarAndBack) {
    startTaskBar();
    launch();
    openSettings();
    EXPECT_TRUE(soon([&] { return taskBarShowsATask(); }));
    driver.clickControl(QStringLiteral("Show in the task bar"), QStringLiteral("check box"));
    EXPECT_TRUE(soon([&] { return skipsTaskBar() && !taskBarShowsATask(); }));
    EXPECT_TRUE(soon([&] { return stored().contains("\"showDockIcon\": false"); }));
    driver.clickControl(QStringLiteral("Show in the task bar"), QStringLiteral("check box"));
    EXPECT_TRUE(soon([&] { return !skipsTaskBar() && taskBarShowsATask(); }));
}

TEST_F(SettingsWindowDesktopTest, openedAndClosedFiftyTimesItTakesNoMoreThanAfterAFew) {
    launch();
    const auto round = [&] {
        openSettings();
        display().requestClose(window()->id);
        EXPECT_TRUE(soon([&] { return !isOpen(); }));
    };
    for (int i = 0; i < 10; ++i)
        round();
    const auto memory = framora->residentKilobytes();
    const int descriptors = framora->openDescriptors();
    const int windows = display().windowCount();
    for (int i = 0; i < 40; ++i)
        round();
    EXPECT_LE(framora->openDescriptors(), descriptors + 1);
    EXPECT_LE(display().windowCount(), windows + 1);
    // A leaked window would be megabytes each time.
    EXPECT_LT(framora->residentKilobytes() - memory, 8 * 1024);
}

TEST_F(SettingsWindowDesktopTest, theResidentProgramLoadsItsWindowsWithTheFirstOfThem) {
    launch();
    const auto maps = [&] {
        QFile file(QStringLiteral("/proc/%1/maps").arg(framora->pid()));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    ASSERT_TRUE(soon([&] { return captures({"Shift_L", "Alt_L", "4"}, 500); }));
    EXPECT_FALSE(maps().contains("libQt6Qml"));
    EXPECT_FALSE(maps().contains("framora-windows"));
    openSettings();
    EXPECT_TRUE(maps().contains("framora-windows"));
}

TEST_F(SettingsWindowDesktopTest, startingAtLoginIsAnEntryForThisProgram) {
    launch();
    openSettings();
    driver.clickControl(QStringLiteral("Start at login"), QStringLiteral("check box"));
    QFile entry(desktop.configPath() + QStringLiteral("/autostart/org.framora.Framora.desktop"));
    ASSERT_TRUE(soon([&] { return entry.exists(); }));
    ASSERT_TRUE(entry.open(QIODevice::ReadOnly));
    const QString program = QFileInfo(FramoraDriver::program(QStringLiteral("framora"))).canonicalFilePath();
    EXPECT_TRUE(entry.readAll().contains("Exec=\"" + program.toUtf8() + "\"\n"));
    driver.clickControl(QStringLiteral("Start at login"), QStringLiteral("check box"));
    EXPECT_TRUE(soon([&] { return !entry.exists(); }));
}

TEST_F(SettingsWindowDesktopTest, aboutShowsWhatTheProgramIsMadeOf) {
    launch();
    openSettings();
    driver.clickControl(QStringLiteral("About"), QStringLiteral("radio button"));
    ASSERT_TRUE(soon([&] { return display().windowTitled(QStringLiteral("About")).has_value(); }));
    // The helpers answer within moments.
    EXPECT_TRUE(soon([&] {
        driver.clickControl(QStringLiteral("Copy"), QStringLiteral("push button"));
        const QByteArray text = desktop.clipboard(QStringLiteral("UTF8_STRING"));
        return text.startsWith("Framora ") && text.contains("\nQt 6.") && text.contains("\nlibheif ") &&
               text.contains("\nFFmpeg ");
    }));
    driver.clickControl(QStringLiteral("Settings"), QStringLiteral("radio button"));
    EXPECT_TRUE(soon([&] { return isOpen(); }));
}

} // namespace
} // namespace framora
