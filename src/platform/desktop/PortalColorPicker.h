#pragma once

#include "platform/ScreenColorPicker.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QPointer>
#include <QString>
#include <memory>

namespace framora {

class PortalRequest;

/// Has the desktop's portal let the user pick, as the desktop does it.
class PortalColorPicker final : public QObject, public ScreenColorPicker {
    Q_OBJECT

public:
    /// One of our windows as portals name it; the name is good as long as it is held.
    using WindowName = std::shared_ptr<const QString>;
    using NameWindow = std::function<WindowName(QWindow*)>;

    explicit PortalColorPicker(NameWindow nameWindow, QDBusConnection bus = QDBusConnection::sessionBus());
    ~PortalColorPicker() override;

    void queryAvailable(std::function<void(bool)> answer) override;
    void pick(QWindow* parent, Picked picked) override;
    void cancel() override;

private:
    NameWindow m_nameWindow;
    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    QPointer<PortalRequest> m_request;
};

} // namespace framora
