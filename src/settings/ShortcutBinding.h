#pragma once

#include "platform/GlobalShortcuts.h"
#include "platform/NotificationCenter.h"
#include "settings/SettingsServices.h"

#include <QObject>
#include <QVariantList>
#include <vector>

namespace framora {

class ShortcutRecorder;

/// What there is to say about how one shortcut works on this desktop: nothing where it just does.
class ShortcutBinding final : public QObject {
    Q_OBJECT
    /// How the user binds it; empty where that is not needed.
    Q_PROPERTY(QString explanation READ explanation NOTIFY changed FINAL)
    /// One map a line of it: "label", "text", "copied".
    Q_PROPERTY(QVariantList lines READ lines NOTIFY changed FINAL)
    /// What the desktop did otherwise than it was asked; empty for nothing.
    Q_PROPERTY(QString notice READ notice NOTIFY changed FINAL)
    /// What can be done about it; empty for nothing.
    Q_PROPERTY(QString remedy READ remedy NOTIFY changed FINAL)

public:
    /// The services and the recorder outlive this. `id` is a shortcutId, `name` what the shortcut does.
    ShortcutBinding(const char* id, QString name, const ShortcutRecorder& recorder,
                    const SettingsServices& services);

    QString explanation() const;
    QVariantList lines() const;
    QString notice() const;
    QString remedy() const;

    /// Puts the line on the clipboard.
    Q_INVOKABLE void copy(int line) const;
    /// What remedy() names.
    Q_INVOKABLE void mend();

Q_SIGNALS:
    void changed();

private:
    GlobalShortcuts::Route route() const { return m_services.globalShortcuts.route(); }

    QString m_id;
    QString m_name;
    const ShortcutRecorder& m_recorder;
    SettingsServices m_services;
    std::vector<NotificationCenter::Token> m_observers;
};

} // namespace framora
