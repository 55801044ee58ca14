#include "platform/wayland/WaylandToastPanels.h"

#include "platform/wayland/WaylandToastPanel.h"

#include <algorithm>
#include <utility>

namespace framora {

WaylandToastPanels::WaylandToastPanels(WaylandConnection& connection, const WaylandOutputs& outputs,
                                       MainQueue& queue, WaylandToastStage::TokenHandler onToken)
    : m_connection(connection), m_outputs(outputs), m_queue(queue), m_onToken(std::move(onToken)) {}

WaylandToastPanels::~WaylandToastPanels() = default;

bool WaylandToastPanels::areOffered(const WaylandConnection& connection) {
    return WaylandToastStage::isOffered(connection);
}

std::unique_ptr<ToastPanel> WaylandToastPanels::makePanel(const Screen& screen, bool ignoresMouse,
                                                          std::unique_ptr<ToastContent> content) {
    if (!m_stage)
        m_stage = std::make_unique<WaylandToastStage>(m_connection, m_outputs, m_onToken);
    const auto first = std::ranges::find_if(
        m_outputs.all(), &WaylandOutput::isKnown, [](const auto& output) -> const auto& { return *output; });
    const bool compositorChooses = first == m_outputs.all().end() || (*first)->name() == screen.name;
    return std::make_unique<WaylandToastPanel>(*m_stage, m_queue, screen, compositorChooses, ignoresMouse,
                                               std::move(content));
}

void WaylandToastPanels::outputChanged(const WaylandOutput& output) {
    if (m_stage)
        m_stage->outputChanged(output);
}

void WaylandToastPanels::withdraw() {
    if (m_stage)
        m_stage->setWithdrawn(true);
}

void WaylandToastPanels::restore() {
    if (m_stage)
        m_stage->setWithdrawn(false);
}

} // namespace framora
