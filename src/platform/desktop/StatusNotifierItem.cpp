#include "platform/desktop/StatusNotifierItem.h"

#include "platform/desktop/TrayMenuExport.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>

namespace framora {

namespace {

const QString itemPath = QStringLiteral("/StatusNotifierItem");
const QString menuPath = QStringLiteral("/MenuBar");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");
/// The program waits for it.
constexpr int answerMilliseconds = 500;

} // namespace

/// org.kde.StatusNotifierItem, as the host sees it.
class StatusNotifierItem::Interface final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category CONSTANT)
    Q_PROPERTY(QString Id READ id CONSTANT)
    Q_PROPERTY(QString Title READ title CONSTANT)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(int WindowId READ windowId CONSTANT)
    Q_PROPERTY(QString IconName READ noName CONSTANT)
    Q_PROPERTY(QString OverlayIconName READ noName CONSTANT)
    Q_PROPERTY(QString AttentionIconName READ noName CONSTANT)
    Q_PROPERTY(QList<framora::TrayPixmap> IconPixmap READ iconPixmap)
    Q_PROPERTY(framora::TrayToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu CONSTANT)
    Q_PROPERTY(QDBusObjectPath Menu READ menu CONSTANT)

public:
    Interface(QObject* parent, QIcon icon, QString title, Events events)
        : QDBusAbstractAdaptor(parent), m_icon(std::move(icon)), m_title(std::move(title)),
          m_events(std::move(events)) {}

    void setIcon(const QIcon& icon) {
        m_icon = icon;
        Q_EMIT NewIcon();
    }

    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const { return QStringLiteral("framora"); }
    QString title() const { return m_title; }
    QString status() const { return QStringLiteral("Active"); }
    int windowId() const { return 0; }
    QString noName() const { return {}; }
    TrayPixmaps iconPixmap() const { return trayPixmaps(m_icon); }
    TrayToolTip toolTip() const { return {{}, {}, m_title, {}}; }
    bool itemIsMenu() const { return true; }
    QDBusObjectPath menu() const { return QDBusObjectPath(menuPath); }

public Q_SLOTS:
    void Activate(int, int) { m_events.activated(); }
    void SecondaryActivate(int, int) { m_events.activated(); }
    void ContextMenu(int, int) { m_events.activated(); }
    void Scroll(int, const QString&) {}
    /// What a host says before each of the above, and before its menu's clicks.
    void ProvideXdgActivationToken(const QString& token) {
        if (m_events.token)
            m_events.token(token);
    }

Q_SIGNALS:
    void NewIcon();
    void NewTitle();
    void NewToolTip();
    void NewStatus(const QString& status);

private:
    QIcon m_icon;
    const QString m_title;
    const Events m_events;
};

StatusNotifierItem::StatusNotifierItem(QDBusConnection bus, QIcon icon, QString title, Events events)
    : m_bus(std::move(bus)), m_menuExport(new TrayMenuExport(&m_menuObject)),
      m_interface(new Interface(this, std::move(icon), std::move(title), std::move(events))) {
    static int made = 0;
    m_service = QStringLiteral("org.kde.StatusNotifierItem-%1-%2")
                    .arg(QCoreApplication::applicationPid())
                    .arg(++made);
    m_bus.registerObject(itemPath, this, QDBusConnection::ExportAdaptors);
    m_bus.registerObject(menuPath, &m_menuObject, QDBusConnection::ExportAdaptors);
    m_bus.registerService(m_service);
    auto call = QDBusMessage::createMethodCall(watcherService(), watcherPath, watcherService(),
                                               QStringLiteral("RegisterStatusNotifierItem"));
    call << m_service;
    m_bus.asyncCall(call);
}

StatusNotifierItem::~StatusNotifierItem() {
    m_bus.unregisterService(m_service);
    m_bus.unregisterObject(itemPath);
    m_bus.unregisterObject(menuPath);
}

bool StatusNotifierItem::watcherRuns(const QDBusConnection& bus) {
    return bus.isConnected() && bus.interface()->isServiceRegistered(watcherService());
}

bool StatusNotifierItem::hostRuns(const QDBusConnection& bus) {
    if (!watcherRuns(bus))
        return false;
    auto question = QDBusMessage::createMethodCall(watcherService(), watcherPath,
                                                   QStringLiteral("org.freedesktop.DBus.Properties"),
                                                   QStringLiteral("Get"));
    question << watcherService() << QStringLiteral("IsStatusNotifierHostRegistered");
    const QDBusReply<QDBusVariant> answer = bus.call(question, QDBus::Block, answerMilliseconds);
    return answer.isValid() && answer.value().variant().toBool();
}

void StatusNotifierItem::setIcon(const QIcon& icon) {
    m_interface->setIcon(icon);
}

void StatusNotifierItem::setMenu(QMenu* menu) {
    m_menuExport->setMenu(menu);
}

} // namespace framora

#include "StatusNotifierItem.moc"
