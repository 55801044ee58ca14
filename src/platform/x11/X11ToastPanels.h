#pragma once

#include "platform/MainQueue.h"
#include "platform/ToastPanel.h"

#include <memory>

namespace framora {

class Screens;
class X11ToastConnection;

/// Toast panels on an X server. The connection is opened with the first panel; it and the panels share the
/// thread.
class X11ToastPanels final : public ToastPanels {
public:
    /// Queue and screens outlive this, and this its panels.
    X11ToastPanels(MainQueue& queue, Screens& screens);
    ~X11ToastPanels() override;

    /// Where there is no server any more, a panel that shows nothing and keeps its times.
    std::unique_ptr<ToastPanel> makePanel(const Screen& screen, bool ignoresMouse,
                                          std::unique_ptr<ToastContent> content) override;

    void withdraw() override;
    void restore() override;

private:
    /// Moves the panels with their screens.
    void follow();

    MainQueue& m_queue;
    Screens& m_screens;
    std::unique_ptr<X11ToastConnection> m_connection;
};

} // namespace framora
