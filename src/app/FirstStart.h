#pragma once

#include <functional>
#include <memory>

namespace framora {

class GlobalShortcuts;
class MainQueue;
class NotificationCenter;
class StatusBar;
class UserDefaults;
class WorkItem;

/// What a user's very first start shows where it would show nothing at all: no tray has the program's item,
/// and no way leads from the keys to it. The preferences open then, which say what to bind; once, since the
/// settings are stored with that. Nor do they open where there is a store already, be it damaged, or where
/// none can be written: that would be so at every start.
class FirstStart {
public:
    /// All of it outlives this.
    struct Services {
        MainQueue& mainQueue;
        UserDefaults& defaults;
        NotificationCenter& notifications;
        const GlobalShortcuts& globalShortcuts;
        const StatusBar& statusBar;
        std::function<void()> openSettings;
    };

    explicit FirstStart(Services services);
    ~FirstStart();
    FirstStart(const FirstStart&) = delete;
    FirstStart& operator=(const FirstStart&) = delete;

private:
    bool isOver() const;
    void look();

    Services m_services;
    int m_looks = 0;
    std::unique_ptr<WorkItem> m_timer;
};

} // namespace framora
