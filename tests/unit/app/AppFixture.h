#pragma once

#include "app/AppDelegate.h"
#include "feedback/SoundManager.h"
#include "platform/Notifications.h"
#include "settings/Settings.h"
#include "support/FixedAppearance.h"
#include "support/FixedScreens.h"
#include "support/ManualMainQueue.h"
#include "support/MemoryDefaults.h"
#include "support/RecordingPlatform.h"

#include <gtest/gtest.h>

namespace framora {

/// The shell on a platform that writes everything down.
class AppTest : public testing::Test {
protected:
    class Window final : public SettingsWindow {
    public:
        explicit Window(PlatformLog& log) : m_log(log) {}
        ~Window() override { m_log.push_back("close window"); }
        void center() override { m_log.push_back("centre"); }
        void makeKeyAndOrderFront() override { m_log.push_back("front"); }

    private:
        PlatformLog& m_log;
    };

    AppServices services() {
        return {queue,
                queue,
                notifications,
                defaults,
                monitors,
                pasteboard,
                captureTool,
                statusBar,
                permissions,
                application,
                sounds,
                {queue, toastPanels, screens, appearance,
                 [this](const QImage& image) {
                     log.push_back("edit");
                     edited = image;
                 }},
                [this](std::function<void()> onWillClose) -> std::unique_ptr<SettingsWindow> {
                    log.push_back("make window");
                    if (!makesWindows)
                        return nullptr;
                    closeNotices.push_back(std::move(onWillClose));
                    return std::make_unique<Window>(log);
                }};
    }

    void store(const Settings& settings) { settings.save(defaults, notifications); }

    /// The calls since the last time this was asked.
    PlatformLog takeLog() { return std::exchange(log, {}); }

    /// What removing and adding both shortcuts' monitors looks like.
    static PlatformLog registration(bool again) {
        PlatformLog calls(again ? 4 : 0, "remove monitor");
        for (int shortcut = 0; shortcut < 2; ++shortcut)
            calls.insert(calls.end(), {"add global", "add local"});
        return calls;
    }
    static PlatformLog joined(std::initializer_list<PlatformLog> parts) {
        PlatformLog all;
        for (const auto& part : parts)
            all.insert(all.end(), part.begin(), part.end());
        return all;
    }

    /// Notifications appear in the list too.
    void logNotifications() {
        for (const char* name :
             {notifications::accessibilityPermissionsGranted, notifications::permissionsStatusChanged})
            tokens.push_back(
                notifications.observe(name, [this, name] { log.push_back(std::string("post ") + name); }));
    }

    static QImage picture() {
        QImage image(12, 7, QImage::Format_RGB32);
        image.fill(0xff336699);
        return image;
    }

    PlatformLog log;
    ManualMainQueue queue;
    NotificationCenter notifications;
    MemoryDefaults defaults;
    RecordingKeyMonitors monitors{log};
    RecordingPasteboard pasteboard{log};
    RecordingCaptureTool captureTool{log};
    RecordingStatusBar statusBar{log};
    RecordingPermissions permissions{log};
    RecordingApplication application{log};
    LoggedSoundOutput soundOutput{log};
    SoundManager sounds{soundOutput};
    LoggedToastPanels toastPanels{log};
    FixedScreens screens;
    FixedAppearance appearance;
    QImage edited;
    std::vector<std::function<void()>> closeNotices;
    bool makesWindows = true;
    std::vector<NotificationCenter::Token> tokens;
};

} // namespace framora
