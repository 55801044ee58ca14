#pragma once

#include "platform/MainQueue.h"
#include "platform/ToastPanel.h"
#include "platform/wayland/WaylandToastStage.h"

#include <memory>

namespace framora {

/// Toast panels on a compositor's layer shell. What they need of it is taken with the first panel.
class WaylandToastPanels final : public ToastPanels {
public:
    /// All outlive this, and this its panels.
    WaylandToastPanels(WaylandConnection& connection, const WaylandOutputs& outputs, MainQueue& queue,
                       WaylandToastStage::TokenHandler onToken);
    ~WaylandToastPanels() override;

    /// Whether the compositor offers what they need.
    static bool areOffered(const WaylandConnection& connection);

    /// A panel for the first screen stands where the user works: the compositor knows better than anybody.
    std::unique_ptr<ToastPanel> makePanel(const Screen& screen, bool ignoresMouse,
                                          std::unique_ptr<ToastContent> content) override;
    void withdraw() override;
    void restore() override;

    /// What stands on that output follows it.
    void outputChanged(const WaylandOutput& output);

private:
    WaylandConnection& m_connection;
    const WaylandOutputs& m_outputs;
    MainQueue& m_queue;
    WaylandToastStage::TokenHandler m_onToken;
    std::unique_ptr<WaylandToastStage> m_stage;
};

} // namespace framora
