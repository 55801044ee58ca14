#include "editor/model/RecentColors.h"

#include "platform/UserDefaults.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <utility>

namespace framora {
namespace {

QStringList storedNames(const UserDefaults& defaults) {
    QStringList names;
    const auto stored = defaults.dataForKey(RecentColors::key);
    if (!stored)
        return names;
    const QJsonArray array = QJsonDocument::fromJson(QByteArray::fromStdString(*stored)).array();
    for (const auto& value : array) {
        const QColor color(value.toString());
        if (color.isValid() && color.alpha() == 255 && !names.contains(color.name()))
            names.append(color.name());
    }
    return names.mid(0, RecentColors::most);
}

} // namespace

RecentColors::RecentColors(UserDefaults* defaults, QObject* parent) : QObject(parent), m_defaults(defaults) {}

const QStringList& RecentColors::names() {
    // Read when they are first wanted: most editors come and go without.
    if (!std::exchange(m_loaded, true) && m_defaults)
        m_names = storedNames(*m_defaults);
    return m_names;
}

void RecentColors::add(const QColor& color) {
    if (!color.isValid() || color.alpha() != 255 || (!names().isEmpty() && names().first() == color.name()))
        return;
    m_names.removeAll(color.name());
    m_names.prepend(color.name());
    m_names = m_names.mid(0, most);
    if (m_defaults)
        m_defaults->setData(
            key,
            QJsonDocument(QJsonArray::fromStringList(m_names)).toJson(QJsonDocument::Compact).toStdString());
    Q_EMIT changed();
}

} // namespace framora
