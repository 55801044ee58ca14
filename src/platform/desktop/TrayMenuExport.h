#pragma once

#include "platform/desktop/TrayMessages.h"

#include <QDBusAbstractAdaptor>
#include <QDBusVariant>
#include <QPointer>
#include <QStringList>

class QMenu;

namespace framora {

/// A flat menu for the tray host to draw: com.canonical.dbusmenu on `parent`. Entries are numbered from 1 in
/// the menu's order; 0 is the menu itself.
class TrayMenuExport final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version CONSTANT)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(QString TextDirection READ textDirection CONSTANT)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath CONSTANT)

public:
    explicit TrayMenuExport(QObject* parent);

    /// The menu whose entries are shown from now on; null for none.
    void setMenu(QMenu* menu);

    uint version() const { return 3; }
    QString status() const { return QStringLiteral("normal"); }
    QString textDirection() const { return QStringLiteral("ltr"); }
    QStringList iconThemePath() const { return {}; }

public Q_SLOTS:
    uint GetLayout(int parentId, int depth, const QStringList& names, framora::TrayMenuNode& layout);
    QList<framora::TrayMenuProperties> GetGroupProperties(const QList<int>& ids, const QStringList& names);
    QDBusVariant GetProperty(int id, const QString& name);
    void Event(int id, const QString& type, const QDBusVariant& data, uint time);
    QList<int> EventGroup(const QList<framora::TrayMenuEvent>& events);
    bool AboutToShow(int id);
    QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors);

Q_SIGNALS:
    void LayoutUpdated(uint revision, int parentId);

private:
    QVariantMap properties(int id) const;

    QPointer<QMenu> m_menu;
    uint m_revision = 1;
};

} // namespace framora
