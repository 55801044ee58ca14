#pragma once

#include "platform/ComponentVersions.h"
#include "platform/DesktopShortcuts.h"
#include "platform/GlobalShortcuts.h"
#include "platform/KeyboardLayout.h"
#include "platform/LoginItem.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "platform/Permissions.h"
#include "platform/PrivacyPanes.h"
#include "settings/SettingsServices.h"
#include "support/FixedAppearance.h"
#include "support/ManualKeyMonitors.h"
#include "support/ManualMainQueue.h"
#include "support/MemoryDefaults.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace framora {

/// A layout that prints what the test says; at first nothing.
class FixedKeyboardLayout final : public KeyboardLayout {
public:
    QString textOfKey(std::uint16_t virtualKey) const override {
        const auto found = texts.find(virtualKey);
        return found == texts.end() ? QString() : found->second;
    }
    std::map<std::uint16_t, QString> texts;
};

class FixedDesktopShortcuts final : public DesktopShortcuts {
public:
    bool isTaken(std::uint16_t virtualKey, std::uint64_t modifiers) override {
        return taken.contains({virtualKey, modifiers});
    }
    std::set<std::pair<std::uint16_t, std::uint64_t>> taken;
};

/// Shortcuts whose way the test chooses.
class SwitchableShortcuts final : public GlobalShortcuts {
public:
    Route route() const override { return way; }
    std::optional<QString> differingKeys(const QString& id) const override {
        const auto found = keys.find(id);
        return found == keys.end() ? std::nullopt : std::optional(found->second);
    }
    bool canConfigure() const override { return configurable; }
    void configure() override { ++configured; }
    void askAgain() override { ++asked; }

    Route way = Route::watching;
    std::map<QString, QString> keys; ///< Those that differ, by id.
    bool configurable = false;
    int configured = 0;
    int asked = 0;
};

/// Permissions that the test gives and takes away.
class SwitchablePermissions final : public Permissions {
public:
    bool isAccessibilityTrusted() override {
        ++checks;
        return trusted;
    }
    bool requestAccessibility() override {
        ++requests;
        return trusted;
    }
    bool canCaptureScreen() override { return recording; }
    bool requestScreenCapture(QWindow*) override {
        ++screenRequests;
        return asksForScreen;
    }
    QString commandToForgetDenial() override { return forget; }

    bool trusted = false;
    bool recording = false;
    int checks = 0;
    int requests = 0;
    bool asksForScreen = false; ///< Whether the desktop has a question of its own.
    int screenRequests = 0;
    QString forget;
};

/// Writes down the routes that are tried; the one that the test names works.
class RecordingPrivacyPanes final : public PrivacyPanes {
public:
    bool hasPage(PrivacyPane) const override { return working == "page"; }
    bool openPage(PrivacyPane pane) override {
        return attempt(pane == PrivacyPane::accessibility ? "page accessibility" : "page screen capture");
    }
    bool openPrivacyOverview() override { return attempt("overview"); }
    bool openSettingsProgram() override { return attempt("program"); }

    std::vector<std::string> tried;
    std::string working = "page";

private:
    bool attempt(const std::string& route) {
        tried.push_back(route);
        return !working.empty() && route.starts_with(working);
    }
};

class MemoryLoginItem final : public LoginItem {
public:
    bool isEnabled() const override { return enabled; }
    bool setEnabled(bool wish) override {
        if (isReadOnly)
            return false;
        enabled = wish;
        return true;
    }
    bool enabled = false;
    bool isReadOnly = false;
};

class FixedComponentVersions final : public ComponentVersions {
public:
    void ask(Answer answer) override { answer(versions); }
    QStringList versions;
};

/// Everything a settings window needs, in memory.
struct SettingsPlatform {
    ManualMainQueue queue;
    NotificationCenter notifications;
    MemoryDefaults defaults;
    ManualKeyMonitors keys;
    FixedKeyboardLayout layout;
    FixedDesktopShortcuts desktopShortcuts;
    SwitchableShortcuts shortcuts;
    HandBinding handBinding{HandBinding::Kind::command, QStringLiteral("/usr/bin/framora")};
    SwitchablePermissions permissions;
    RecordingPrivacyPanes panes;
    MemoryLoginItem loginItem;
    FixedAppearance appearance;
    FixedComponentVersions componentVersions;
    bool canHideDockIcon = true;
    const QWindow* fronted = nullptr;
    std::vector<std::pair<CaptureSound, float>> played;

    SettingsServices services() {
        return {queue,
                notifications,
                defaults,
                keys,
                layout,
                desktopShortcuts,
                shortcuts,
                handBinding,
                permissions,
                panes,
                loginItem,
                appearance,
                componentVersions,
                [this](CaptureSound sound, float volume) { played.emplace_back(sound, volume); },
                [this](QWindow& window) { fronted = &window; },
                canHideDockIcon};
    }

    /// The names of all that is posted from now on, in order.
    struct Posts {
        explicit Posts(NotificationCenter& center) {
            for (const char* name :
                 {notifications::settingsChanged, notifications::hotkeyConfigurationChanged,
                  notifications::dockIconChanged, notifications::accessibilityPermissionsGranted})
                tokens.push_back(center.observe(name, [this, name] { names.emplace_back(name); }));
        }
        std::vector<std::string> names;
        std::vector<NotificationCenter::Token> tokens;
    };
};

} // namespace framora
