#pragma once

#include "platform/Appearance.h"
#include "platform/CommandGate.h"
#include "platform/NotificationCenter.h"
#include "platform/StatusBar.h"

#include <QIcon>
#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

class QDBusServiceWatcher;

namespace framora {

/// One item in the tray. Qt decides for good between the two kinds of tray when an icon is made, so that the
/// icon is made anew when a watcher or its host appears or goes.
class TrayStatusItem final : public QObject, public StatusItem {
    Q_OBJECT

public:
    TrayStatusItem(CommandGate& gate, const Appearance& appearance, NotificationCenter& notifications);
    ~TrayStatusItem() override;

    bool setSymbol(const QString& symbol, const QString& accessibilityDescription, double pointSize) override;
    void setMenu(std::vector<MenuEntry> entries) override;

private Q_SLOTS:
    void makeIcon();

private:
    void drawSymbol();

    CommandGate& m_gate;
    const Appearance& m_appearance;
    QString m_symbol;
    QString m_description;
    double m_pointSize = 0;
    QIcon m_picture;
    std::unique_ptr<QMenu> m_menu;
    std::unique_ptr<QSystemTrayIcon> m_icon;
    NotificationCenter::Token m_appearanceObserver;
};

} // namespace framora
