#pragma once

#include "platform/KeyMonitors.h"

#include <map>
#include <string>
#include <vector>

namespace framora {

/// Key monitors whose keys the test presses.
class ManualKeyMonitors final : public KeyMonitors {
public:
    Token addGlobalMonitor(GlobalHandler handler) override {
        log.push_back("add global");
        if (refusesGlobal)
            return 0;
        globals[++m_last] = std::move(handler);
        return m_last;
    }
    Token addLocalMonitor(LocalHandler handler) override {
        log.push_back("add local");
        locals[++m_last] = std::move(handler);
        return m_last;
    }
    Token addRecordingMonitor(LocalHandler handler) override {
        log.push_back("add recording");
        if (refusesRecording)
            return 0;
        recordings[++m_last] = std::move(handler);
        return m_last;
    }
    void removeMonitor(Token token) override {
        log.push_back(globals.contains(token)      ? "remove global"
                      : locals.contains(token)     ? "remove local"
                      : recordings.contains(token) ? "remove recording"
                                                   : "remove unknown");
        globals.erase(token);
        locals.erase(token);
        recordings.erase(token);
    }

    /// A key goes to another program.
    void pressElsewhere(KeyEvent event) {
        // A copy each: handlers may remove monitors.
        for (const auto& [token, handler] : std::map(globals))
            handler(event);
    }
    /// A key goes to this program. True when a monitor consumed it.
    bool pressHere(KeyEvent event) {
        for (const auto& [token, handler] : std::map(recordings)) {
            if (recordings.contains(token) && handler(event))
                return true;
        }
        if (event.type != KeyEventType::keyDown)
            return false;
        for (const auto& [token, handler] : std::map(locals)) {
            if (handler(event))
                return true;
        }
        return false;
    }

    std::map<Token, GlobalHandler> globals;
    std::map<Token, LocalHandler> locals;
    std::map<Token, LocalHandler> recordings;
    bool refusesGlobal = false;
    bool refusesRecording = false;
    std::vector<std::string> log;

private:
    Token m_last = 0;
};

} // namespace framora
