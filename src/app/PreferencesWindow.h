#pragma once

#include "app/SettingsWindow.h"
#include "settings/Settings.h"

#include <QObject>
#include <QWidget>

namespace framora {

/// The window titled "Preferences": which shortcuts are set. One page of widgets, so that looking at it does
/// not bring the QML engine in.
class PreferencesWindow final : public QObject, public SettingsWindow {
    Q_OBJECT

public:
    using FrontAction = std::function<void(QWindow&)>;

    /// `onOrderFront` is told of the native window each time it is brought forward.
    PreferencesWindow(const Settings& settings, std::function<void()> onWillClose, FrontAction onOrderFront);
    ~PreferencesWindow() override;

    void center() override;
    void makeKeyAndOrderFront() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::unique_ptr<QWidget> m_window;
    std::function<void()> m_onWillClose;
    FrontAction m_onOrderFront;
};

} // namespace framora
