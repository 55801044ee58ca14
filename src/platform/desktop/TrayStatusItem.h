#pragma once

#include "platform/Appearance.h"
#include "platform/CommandGate.h"
#include "platform/NotificationCenter.h"
#include "platform/StatusBar.h"

#include <QIcon>
#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>
#include <functional>

class QDBusServiceWatcher;

namespace framora {

class StatusNotifierItem;

/// One item in the tray, made anew when a watcher or its host appears or goes. Qt decides between the two
/// kinds of tray once for the whole process: its icon is only used while no watcher runs, which makes it
/// XEmbed's.
class TrayStatusItem final : public QObject, public StatusItem {
    Q_OBJECT

public:
    using TokenHandler = std::function<void(const QString& token)>;

    /// `onToken` hears what lets a window come to the front after the click that follows.
    TrayStatusItem(CommandGate& gate, const Appearance& appearance, NotificationCenter& notifications,
                   TokenHandler onToken = {});
    ~TrayStatusItem() override;

    /// Whether there is another kind of tray than the one with a watcher.
    static bool canBeEmbedded();

    bool setSymbol(const QString& symbol, const QString& accessibilityDescription, double pointSize) override;
    void setMenu(std::vector<MenuEntry> entries) override;

private Q_SLOTS:
    void makeIcon();

private:
    void drawSymbol();
    void showPicture();
    void popUpMenu();
    /// A click whose command came too late, because another one has closed the gate since, is dropped.
    void runAfterMenu(const std::function<void()>& command);

    CommandGate& m_gate;
    const Appearance& m_appearance;
    TokenHandler m_onToken;
    QString m_symbol;
    QString m_description;
    double m_pointSize = 0;
    QIcon m_picture;
    std::unique_ptr<QMenu> m_menu;
    std::unique_ptr<QSystemTrayIcon> m_icon;
    std::unique_ptr<StatusNotifierItem> m_notifierItem;
    NotificationCenter::Token m_appearanceObserver;
};

} // namespace framora
