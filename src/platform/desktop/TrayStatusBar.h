#pragma once

#include "platform/Appearance.h"
#include "platform/CommandGate.h"
#include "platform/NotificationCenter.h"
#include "platform/StatusBar.h"

#include <functional>

namespace framora {

/// The desktop's tray: a StatusNotifierItem where a watcher runs, an XEmbed icon otherwise. Either kind of
/// host may come and go while the program runs.
class TrayStatusBar final : public StatusBar {
public:
    /// `onToken` hears what lets a window come to the front after a click on an item.
    TrayStatusBar(CommandGate& gate, const Appearance& appearance, NotificationCenter& notifications,
                  std::function<void(const QString& token)> onToken);
    std::unique_ptr<StatusItem> makeStatusItem() override;
    bool hasHost() const override;

private:
    CommandGate& m_gate;
    const Appearance& m_appearance;
    NotificationCenter& m_notifications;
    std::function<void(const QString& token)> m_onToken;
};

} // namespace framora
