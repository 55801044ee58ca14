#pragma once

#include "platform/NotificationCenter.h"
#include "settings/SettingsServices.h"
#include "settings/SettingsWindow.h"

#include <QObject>
#include <functional>
#include <memory>

class QQuickView;

namespace framora {

class SettingsSession;

/// The settings window over its views. It has no title bar of the desktop's; its view draws one header.
class QuickSettingsWindow final : public QObject, public SettingsWindow {
    Q_OBJECT

public:
    QuickSettingsWindow(const SettingsServices& services, std::function<void()> onWillClose);
    ~QuickSettingsWindow() override;

    void center() override;
    void makeKeyAndOrderFront() override;

    QQuickView& view() { return *m_view; }
    SettingsSession& session() { return *m_session; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void loadContent();

    SettingsServices m_services;
    std::function<void()> m_onWillClose;
    std::unique_ptr<SettingsSession> m_session;
    std::unique_ptr<QQuickView> m_view; ///< Bound to the session: it goes first.
    NotificationCenter::Token m_appearanceObserver;
};

} // namespace framora
