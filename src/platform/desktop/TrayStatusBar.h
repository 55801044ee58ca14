#pragma once

#include "platform/Appearance.h"
#include "platform/CommandGate.h"
#include "platform/NotificationCenter.h"
#include "platform/StatusBar.h"

namespace framora {

/// The desktop's tray: a StatusNotifierItem where a watcher runs, an XEmbed icon otherwise. Either kind of
/// host may come and go while the program runs.
class TrayStatusBar final : public StatusBar {
public:
    TrayStatusBar(CommandGate& gate, const Appearance& appearance, NotificationCenter& notifications);
    std::unique_ptr<StatusItem> makeStatusItem() override;

private:
    CommandGate& m_gate;
    const Appearance& m_appearance;
    NotificationCenter& m_notifications;
};

} // namespace framora
