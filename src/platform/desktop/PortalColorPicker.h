#pragma once

#include "platform/ScreenColorPicker.h"
#include "platform/desktop/PortalWindow.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QPointer>

namespace framora {

class PortalRequest;

/// Has the desktop's portal let the user pick, as the desktop does it.
class PortalColorPicker final : public QObject, public ScreenColorPicker {
    Q_OBJECT

public:
    explicit PortalColorPicker(NamePortalWindow nameWindow,
                               QDBusConnection bus = QDBusConnection::sessionBus());
    ~PortalColorPicker() override;

    void queryAvailable(std::function<void(bool)> answer) override;
    void pick(QWindow* parent, Picked picked, Failed failed) override;
    void dismiss() override;
    void cancel() override;

private:
    /// What is under way is taken back; whom its answer was meant for.
    Picked takeBack();

    NamePortalWindow m_nameWindow;
    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    QPointer<PortalRequest> m_request;
    Picked m_picked; ///< Empty while nothing is under way.
    unsigned m_cancellations = 0;
};

} // namespace framora
