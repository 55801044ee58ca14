#include "settings/window/QuickSettingsWindow.h"

#include "controls/Controls.h"
#include "platform/MainQueue.h"
#include "platform/Notifications.h"
#include "settings/views/SettingsSession.h"
#include "settings/views/SettingsViews.h"

#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QScreen>
#include <malloc.h>

namespace framora {
namespace {

/// Below this the rows no longer have room for their words and controls.
constexpr QSize minimumSize{480, 360};

} // namespace

QuickSettingsWindow::QuickSettingsWindow(const SettingsServices& services, std::function<void()> onWillClose)
    : m_services(services), m_onWillClose(std::move(onWillClose)), m_view(std::make_unique<QQuickView>()) {
    m_session = std::make_unique<SettingsSession>(
        m_services, SettingsSession::Actions{[this] { m_view->close(); },
                                             [this] {
                                                 if (m_view->visibility() == QWindow::Maximized)
                                                     m_view->showNormal();
                                                 else
                                                     m_view->showMaximized();
                                             }});
    QQuickView& window = *m_view;
    window.setFlags(Qt::Window | Qt::FramelessWindowHint);
    window.setResizeMode(QQuickView::SizeRootObjectToView);
    window.setMinimumSize(minimumSize);
    window.setTitle(m_session->navigationTitle());
    connect(m_session.get(), &SettingsSession::selectedTabChanged, this,
            [this] { m_view->setTitle(m_session->navigationTitle()); });
    window.installEventFilter(this);
    loadContent();
    m_appearanceObserver = m_services.notifications.observe(
        notifications::appearanceChanged, [this] { showLook(m_view->rootObject(), m_services.appearance); });
}

QuickSettingsWindow::~QuickSettingsWindow() {
    m_view->removeEventFilter(this);
    m_view.reset();
    // A resident program gives back what a whole window took; malloc would keep most of it.
    m_services.mainQueue.async([] { malloc_trim(0); });
}

void QuickSettingsWindow::loadContent() {
    registerSettingsViews(*m_view->engine());
    const QUrl source(QStringLiteral("qrc:/framora/qml/Framora/Settings/AppSettingsView.qml"));
    auto* component = new QQmlComponent(m_view->engine(), source, m_view.get());
    QVariantMap properties = lookOf(m_services.appearance);
    properties.insert(QStringLiteral("session"), QVariant::fromValue(m_session.get()));
    QObject* root = component->createWithInitialProperties(properties);
    if (!root)
        qFatal("QuickSettingsWindow: %s", qPrintable(component->errorString()));
    // The root view sizes the window.
    const auto* item = qobject_cast<QQuickItem*>(root);
    const QSize wanted(qRound(item->implicitWidth()), qRound(item->implicitHeight()));
    m_view->setContent(source, component, root);
    m_view->resize(wanted);
}

void QuickSettingsWindow::center() {
    const QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    const QRect available = screen->availableGeometry();
    m_view->resize(m_view->size().boundedTo(available.size()).expandedTo(minimumSize));
    QRect frame({0, 0}, m_view->size());
    frame.moveCenter(available.center());
    m_view->setPosition(frame.topLeft());
}

void QuickSettingsWindow::makeKeyAndOrderFront() {
    m_view->setWindowStates(m_view->windowStates() & ~Qt::WindowMinimized);
    m_view->show();
    m_view->raise();
    m_view->requestActivate();
    m_services.orderedFront(*m_view);
}

bool QuickSettingsWindow::eventFilter(QObject* watched, QEvent* event) {
    // The close may come out of the window's own handlers: whoever hears of it keeps the window for now.
    if (watched == m_view.get() && event->type() == QEvent::Close)
        m_onWillClose();
    return QObject::eventFilter(watched, event);
}

} // namespace framora
