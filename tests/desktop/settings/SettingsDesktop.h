#pragma once

#include "desktop/path/FramoraDriver.h"

#include <QDir>
#include <gtest/gtest.h>

namespace framora {

/// The built program on a desktop of its own, with its settings window open and operated as a person would.
class SettingsDesktop : public testing::Test {
protected:
    static DesktopOptions options() {
        DesktopOptions options;
        options.accessibility = true;
        return options;
    }
    explicit SettingsDesktop(const DesktopOptions& desktopOptions = options())
        : desktop(desktopOptions), driver(desktop) {}

    DesktopDisplay& display() { return desktop.display(); }
    static bool soon(const std::function<bool()>& condition, int timeoutMs = 10000) {
        return VirtualDesktop::waitFor(condition, timeoutMs);
    }

    /// Starts the program; it has no window then.
    ChildProcess& launch() {
        framora = &desktop.start(FramoraDriver::program(QStringLiteral("framora")));
        // Until it listens, a second start could become the first.
        EXPECT_TRUE(soon([&] {
            return !QDir(desktop.runtimePath())
                        .entryList({QStringLiteral("framora-*.socket")}, QDir::Files | QDir::System)
                        .isEmpty();
        }));
        return *framora;
    }
    /// Where no tray shows the program, starting it again opens the settings.
    void openSettings() {
        EXPECT_TRUE(soon([&] {
            ChildProcess& second = desktop.start(FramoraDriver::program(QStringLiteral("framora")));
            return second.waitForExit(3000) && soon([&] { return isOpen(); }, 5000);
        }));
        EXPECT_TRUE(soon([&] { return isActive(); }));
    }
    std::optional<DesktopWindow> window() { return display().windowTitled(QStringLiteral("Preferences")); }
    bool isOpen() { return window().has_value(); }
    bool isActive() {
        const auto preferences = window();
        return preferences && display().activeWindow() == preferences->id;
    }

    void startRecording(const char* section) {
        driver.clickControl(QLatin1String(section), QStringLiteral("push button"));
        // The window manager may hold the click back a little, and let keys overtake it.
        driver.control(QStringLiteral("Enter a key combination"));
    }
    void stopCapture() {
        display().key({"Escape"});
        driver.waitForNoOverlay();
    }
    /// Whether the keys bring the capture's overlay up, which is put away again.
    bool captures(std::initializer_list<const char*> keys, int timeoutMs = 3000) {
        display().key(keys);
        const bool came = soon([&] { return driver.overlay().has_value(); }, timeoutMs);
        if (came)
            stopCapture();
        return came;
    }
    QByteArray stored() { return desktop.storedDefaults(); }

    VirtualDesktop desktop;
    FramoraDriver driver;
    ChildProcess* framora = nullptr;
};

} // namespace framora
