#include "settings/HotkeyManager.h"

#include "settings/Settings.h"

#include <memory>

namespace framora {
namespace {

std::optional<KeyMonitors::Token> given(KeyMonitors::Token token) {
    return token ? std::optional(token) : std::nullopt;
}

} // namespace

HotkeyManager::HotkeyManager(KeyMonitors& monitors, const UserDefaults& defaults)
    : m_monitors(monitors), m_defaults(defaults) {}

void HotkeyManager::registerHotkeys() {
    removeMonitors();
    if (screenshotHandler)
        install(screenshotHandler, Settings::load(m_defaults).hotkey);
    if (tabCaptureHandler)
        install(tabCaptureHandler, Settings::load(m_defaults).tabCaptureHotkey);
}

void HotkeyManager::removeMonitors() {
    remove(screenshotHandler);
    remove(tabCaptureHandler);
}

void HotkeyManager::install(std::optional<HotkeyHandler>& handler, HotkeyConfiguration configuration) {
    handler->configuration = configuration;
    // The callbacks share a copy: they may run, and register anew from within, while the manager's own
    // changes.
    const auto held = std::make_shared<const HotkeyHandler>(*handler);
    const auto run = [held](const KeyEvent& event) {
        // On the stack, as the action may remove the monitor and the holder with it.
        const auto current = held; // NOLINT(performance-unnecessary-copy-initialization)
        if (!current->matches(event))
            return false;
        if (current->onPressed)
            current->onPressed();
        return true;
    };
    handler->globalMonitor = given(m_monitors.addGlobalMonitor([run](const KeyEvent& event) { run(event); }));
    handler->localMonitor = given(m_monitors.addLocalMonitor(run));
}

void HotkeyManager::remove(std::optional<HotkeyHandler>& handler) {
    if (!handler)
        return;
    if (handler->globalMonitor)
        m_monitors.removeMonitor(*handler->globalMonitor);
    if (handler->localMonitor)
        m_monitors.removeMonitor(*handler->localMonitor);
    handler->globalMonitor.reset();
    handler->localMonitor.reset();
}

} // namespace framora
