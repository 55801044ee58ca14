#include "settings/ShortcutBinding.h"

#include "platform/Localized.h"
#include "platform/Notifications.h"
#include "platform/PrivacyPanes.h"
#include "settings/BindingGuide.h"
#include "settings/ShortcutRecorder.h"

#include <QClipboard>
#include <QGuiApplication>

namespace framora {

using Route = GlobalShortcuts::Route;

ShortcutBinding::ShortcutBinding(const char* id, QString name, const ShortcutRecorder& recorder,
                                 const SettingsServices& services)
    : m_id(QString::fromLatin1(id)), m_name(std::move(name)), m_recorder(recorder), m_services(services) {
    for (const char* notification :
         {notifications::shortcutBindingsChanged, notifications::keyboardLayoutChanged})
        m_observers.push_back(m_services.notifications.observe(notification, [this] { Q_EMIT changed(); }));
    connect(&m_recorder, &ShortcutRecorder::changed, this, &ShortcutBinding::changed);
}

QString ShortcutBinding::explanation() const {
    if (route() != Route::byHand)
        return {};
    return bindingGuide(m_services.handBinding, m_name, m_id, m_recorder.configuration(),
                        m_services.keyboardLayout)
        .explanation;
}

QVariantList ShortcutBinding::lines() const {
    QVariantList all;
    if (route() != Route::byHand)
        return all;
    const BindingGuide guide = bindingGuide(m_services.handBinding, m_name, m_id, m_recorder.configuration(),
                                            m_services.keyboardLayout);
    for (const auto& line : guide.lines)
        all << QVariantMap{{QStringLiteral("label"), line.label},
                           {QStringLiteral("text"), line.text},
                           {QStringLiteral("copied"), line.isCopied}};
    return all;
}

QString ShortcutBinding::notice() const {
    if (route() == Route::refused)
        return localized(QStringLiteral("shortcut.desktop.refused"));
    if (route() != Route::desktop)
        return {};
    const auto keys = m_services.globalShortcuts.differingKeys(m_id);
    if (!keys)
        return {};
    return keys->isEmpty() ? localized(QStringLiteral("shortcut.desktop.no.keys"))
                           : localized(QStringLiteral("shortcut.desktop.keys")).arg(*keys);
}

QString ShortcutBinding::remedy() const {
    if (route() == Route::refused)
        return localized(QStringLiteral("shortcut.desktop.ask.again"));
    if (notice().isEmpty())
        return {};
    if (m_services.globalShortcuts.canConfigure())
        return localized(QStringLiteral("shortcut.desktop.configure"));
    // Some desktops take a program's wish the first time alone: then only their own settings help.
    return m_services.privacyPanes.hasPage(PrivacyPane::accessibility)
               ? localized(QStringLiteral("open.accessibility.settings"))
               : QString();
}

void ShortcutBinding::copy(int line) const {
    const QVariantList all = lines();
    if (line >= 0 && line < all.size())
        QGuiApplication::clipboard()->setText(all[line].toMap().value(QStringLiteral("text")).toString());
}

void ShortcutBinding::mend() {
    if (route() == Route::refused)
        m_services.globalShortcuts.askAgain();
    else if (m_services.globalShortcuts.canConfigure())
        m_services.globalShortcuts.configure();
    else
        m_services.privacyPanes.openPage(PrivacyPane::accessibility);
}

} // namespace framora
