#include "platform/desktop/TrayMenuExport.h"

#include <QAction>
#include <QMenu>

namespace framora {

namespace {

/// The names that menus on the bus use for the keys; empty where the action has no shortcut.
TrayMenuShortcut shortcutOf(const QAction& action) {
    if (action.shortcut().isEmpty())
        return {};
    QStringList keys = action.shortcut().toString(QKeySequence::PortableText).split(u'+');
    for (QString& key : keys) {
        if (key == u"Meta")
            key = QStringLiteral("Super");
        else if (key == u"Ctrl")
            key = QStringLiteral("Control");
        else if (key.size() == 1)
            key = key.toLower();
    }
    return {keys};
}

} // namespace

TrayMenuExport::TrayMenuExport(QObject* parent) : QDBusAbstractAdaptor(parent) {
    registerTrayMessages();
}

void TrayMenuExport::setMenu(QMenu* menu) {
    m_menu = menu;
    Q_EMIT LayoutUpdated(++m_revision, 0);
}

QVariantMap TrayMenuExport::properties(int id) const {
    if (id == 0)
        return {{QStringLiteral("children-display"), QStringLiteral("submenu")}};
    if (!m_menu || id < 0 || id > m_menu->actions().size())
        return {};
    const QAction& action = *m_menu->actions().at(id - 1);
    // One underline marks an access key, two are one.
    QVariantMap properties{
        {QStringLiteral("label"), action.text().section(u'\t', 0, 0).replace(u'_', QStringLiteral("__"))},
        {QStringLiteral("enabled"), action.isEnabled()},
        {QStringLiteral("visible"), action.isVisible()},
    };
    if (const auto shortcut = shortcutOf(action); !shortcut.isEmpty())
        properties.insert(QStringLiteral("shortcut"), QVariant::fromValue(shortcut));
    return properties;
}

uint TrayMenuExport::GetLayout(int parentId, int depth, const QStringList&, TrayMenuNode& layout) {
    layout = {parentId, properties(parentId), {}};
    const int count = parentId == 0 && depth != 0 && m_menu ? int(m_menu->actions().size()) : 0;
    for (int id = 1; id <= count; ++id)
        layout.children.append({id, properties(id), {}});
    return m_revision;
}

TrayMenuPropertyList TrayMenuExport::GetGroupProperties(const QList<int>& ids, const QStringList&) {
    TrayMenuPropertyList all;
    for (const int id : ids)
        all.append({id, properties(id)});
    return all;
}

QDBusVariant TrayMenuExport::GetProperty(int id, const QString& name) {
    const QVariant value = properties(id).value(name);
    return QDBusVariant(value.isValid() ? value : QVariant(QString()));
}

void TrayMenuExport::Event(int id, const QString& type, const QDBusVariant&, uint) {
    if (type == u"clicked" && m_menu && id >= 1 && id <= m_menu->actions().size())
        m_menu->actions().at(id - 1)->trigger();
}

QList<int> TrayMenuExport::EventGroup(const QList<TrayMenuEvent>& events) {
    for (const TrayMenuEvent& event : events)
        Event(event.id, event.type, event.data, event.time);
    return {};
}

bool TrayMenuExport::AboutToShow(int) {
    return false;
}

QList<int> TrayMenuExport::AboutToShowGroup(const QList<int>&, QList<int>& idErrors) {
    idErrors.clear();
    return {};
}

} // namespace framora
