#include "app/PreferencesWindow.h"

#include "platform/Localized.h"
#include "platform/VirtualKeyCodes.h"

#include <QEvent>
#include <QFormLayout>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

namespace framora {

namespace {

QString keyName(std::uint16_t virtualKey) {
    const char* name = virtualKeyName(virtualKey);
    return name ? QString::fromUtf8(name) : QStringLiteral("#%1").arg(virtualKey);
}

QString shortcutText(const HotkeyConfiguration& hotkey) {
    static constexpr struct {
        std::uint64_t bit;
        const char* name;
    } modifiers[] = {{KeyModifier::command, "Super"},
                     {KeyModifier::control, "Ctrl"},
                     {KeyModifier::option, "Alt"},
                     {KeyModifier::shift, "Shift"}};
    QStringList parts;
    for (const auto& modifier : modifiers) {
        if (hotkey.modifiers & modifier.bit)
            parts << QLatin1String(modifier.name);
    }
    parts << keyName(hotkey.keyCode);
    return parts.join(QStringLiteral(" + "));
}

QLabel* keyCap(const QString& text) {
    auto* label = new QLabel(text);
    label->setStyleSheet(
        QStringLiteral("QLabel { border: 1px solid palette(mid); border-radius: 6px; padding: 4px 10px;"
                       " background: palette(base); color: palette(text); }"));
    return label;
}

} // namespace

PreferencesWindow::PreferencesWindow(const Settings& settings, std::function<void()> onWillClose,
                                     FrontAction onOrderFront)
    : m_window(std::make_unique<QWidget>()), m_onWillClose(std::move(onWillClose)),
      m_onOrderFront(std::move(onOrderFront)) {
    m_window->setWindowTitle(QStringLiteral("Preferences"));
    auto* page = new QVBoxLayout(m_window.get());
    page->setContentsMargins(32, 28, 32, 28);
    page->setSpacing(20);
    auto* heading = new QLabel(localized(QStringLiteral("shortcuts")));
    QFont font = heading->font();
    font.setPointSizeF(font.pointSizeF() * 1.4);
    font.setWeight(QFont::DemiBold);
    heading->setFont(font);
    page->addWidget(heading);
    auto* form = new QFormLayout;
    form->setHorizontalSpacing(32);
    form->setVerticalSpacing(14);
    form->addRow(localized(QStringLiteral("screenshot")), keyCap(shortcutText(settings.hotkey)));
    form->addRow(localized(QStringLiteral("window capture")),
                 keyCap(shortcutText(settings.tabCaptureHotkey)));
    page->addLayout(form);
    page->setSizeConstraint(QLayout::SetFixedSize);
    m_window->installEventFilter(this);
}

PreferencesWindow::~PreferencesWindow() {
    m_window->removeEventFilter(this);
}

void PreferencesWindow::center() {
    m_window->adjustSize();
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    m_window->move(available.center() - m_window->rect().center());
}

void PreferencesWindow::makeKeyAndOrderFront() {
    m_window->setWindowState(m_window->windowState() & ~Qt::WindowMinimized);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
    m_onOrderFront(*m_window->windowHandle());
}

bool PreferencesWindow::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        m_window->close();
        return true;
    }
    if (event->type() == QEvent::Close)
        QTimer::singleShot(0, this, [this] { m_onWillClose(); });
    return false;
}

} // namespace framora
