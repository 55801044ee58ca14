#include "platform/desktop/TrayStatusItem.h"

#include "platform/Notifications.h"
#include "platform/Symbols.h"
#include "platform/desktop/StatusNotifierItem.h"

#include <QCursor>
#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QTimer>

namespace framora {

namespace {

/// The symbol in the colour of the tray's other icons, with its holes and a rim in the opposite colour: a
/// tray may be dark on a light desktop, and the other way round.
QPixmap drawTinted(const QString& symbol, int side, bool dark) {
    const QColor fill = dark ? QColor(0xf2, 0xf2, 0xf4) : QColor(0x2c, 0x2c, 0x2e);
    const QColor rim = dark ? QColor(0x1c, 0x1c, 0x1e) : QColor(0xfa, 0xfa, 0xfc);
    QPixmap pixmap(side, side);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    // The symbol's own margins are for running text; in a tray it fills its square.
    const double grow = side * 0.09;
    const QPainterPath path = symbolPath(symbol, QRectF(-grow, -grow, side + 2 * grow, side + 2 * grow));
    painter.setPen(QPen(rim, side / 10.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(rim);
    for (const QPolygonF& outline : path.toSubpathPolygons())
        painter.drawPolygon(outline);
    painter.fillPath(path, fill);
    return pixmap;
}

} // namespace

TrayStatusItem::TrayStatusItem(CommandGate& gate, const Appearance& appearance,
                               NotificationCenter& notifications, TokenHandler onToken)
    : m_gate(gate), m_appearance(appearance), m_onToken(std::move(onToken)) {
    m_appearanceObserver = notifications.observe(notifications::appearanceChanged, [this] {
        drawSymbol();
        showPicture();
    });

    auto bus = QDBusConnection::sessionBus();
    if (bus.isConnected()) {
        const QString watcherService = StatusNotifierItem::watcherService();
        auto* watcher =
            new QDBusServiceWatcher(watcherService, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
        connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, &TrayStatusItem::makeIcon);
        // A watcher without a host shows nothing: the host's coming counts, too.
        bus.connect(watcherService, QStringLiteral("/StatusNotifierWatcher"), watcherService,
                    QStringLiteral("StatusNotifierHostRegistered"), this, SLOT(makeIcon()));
    }
    // The entries may come in the same turn: the icon is made once, with all of it.
    QTimer::singleShot(0, this, &TrayStatusItem::makeIcon);
}

TrayStatusItem::~TrayStatusItem() = default;

bool TrayStatusItem::canBeEmbedded() {
    // A Wayland desktop has only trays with a watcher.
    return !QGuiApplication::platformName().startsWith(QStringLiteral("wayland"));
}

bool TrayStatusItem::setSymbol(const QString& symbol, const QString& accessibilityDescription,
                               double pointSize) {
    if (!symbolGlyph(symbol))
        return false;
    m_symbol = symbol;
    m_description = accessibilityDescription;
    m_pointSize = pointSize;
    drawSymbol();
    showPicture();
    return true;
}

void TrayStatusItem::showPicture() {
    if (m_icon)
        m_icon->setIcon(m_picture);
    if (m_notifierItem)
        m_notifierItem->setIcon(m_picture);
}

void TrayStatusItem::drawSymbol() {
    if (m_symbol.isEmpty())
        return;
    m_picture = {};
    // The host picks what fits its bar; the symbol's own size is among them.
    for (const int side : {16, qRound(m_pointSize), 22, 24, 32, 48, 64})
        m_picture.addPixmap(drawTinted(m_symbol, side, m_appearance.isDark()));
}

void TrayStatusItem::setMenu(std::vector<MenuEntry> entries) {
    auto menu = std::make_unique<QMenu>();
    for (auto& entry : entries) {
        auto* action = menu->addAction(entry.title);
        if (!entry.keyEquivalent.isEmpty()) {
            action->setShortcut(QKeySequence(QStringLiteral("Meta+") + entry.keyEquivalent));
            // What a menu shows beside the title in the place of Qt's own name of the key, "Meta".
            action->setText(entry.title + QStringLiteral("\tSuper+") + entry.keyEquivalent.toUpper());
        }
        connect(action, &QAction::triggered, this,
                [this, run = std::move(entry.action)] { runAfterMenu(run); });
    }
    if (m_icon)
        m_icon->setContextMenu(menu.get());
    if (m_notifierItem)
        m_notifierItem->setMenu(menu.get());
    m_menu = std::move(menu);
}

void TrayStatusItem::runAfterMenu(const std::function<void()>& command) {
    if (!m_gate.isOpen())
        return;
    const auto run = [this, command, closings = m_gate.closings()] {
        if (m_gate.closings() == closings)
            command();
    };
    // Turns later, so that the menu has let go of pointer and keyboard when the command wants them.
    QMetaObject::invokeMethod(
        this, [this, run] { QTimer::singleShot(0, this, run); }, Qt::QueuedConnection);
}

void TrayStatusItem::popUpMenu() {
    if (m_menu && m_gate.isOpen())
        m_menu->popup(QCursor::pos());
}

void TrayStatusItem::makeIcon() {
    m_icon.reset();
    m_notifierItem.reset();
    const auto bus = QDBusConnection::sessionBus();
    if (StatusNotifierItem::watcherRuns(bus)) {
        m_notifierItem = std::make_unique<StatusNotifierItem>(
            bus, m_picture, m_description, StatusNotifierItem::Events{[this] { popUpMenu(); }, m_onToken});
        m_notifierItem->setMenu(m_menu.get());
        return;
    }
    if (!canBeEmbedded())
        return;
    m_icon = std::make_unique<QSystemTrayIcon>(m_picture);
    m_icon->setToolTip(m_description);
    if (m_menu)
        m_icon->setContextMenu(m_menu.get());
    connect(m_icon.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger)
                    popUpMenu();
            });
    m_icon->show();
}

} // namespace framora
