#include "settings/views/SettingsSession.h"

namespace framora {
namespace {

struct Tab {
    SettingsTab value;
    const char* name;
    const char* label;
    const char* symbol;
    const char* navigationTitle;
};

constexpr std::array tabTable{
    Tab{SettingsTab::settings, "settings", "Settings", "gearshape", "Preferences"},
    Tab{SettingsTab::about, "about", "About", "info.circle", "About"},
};

} // namespace

SettingsSession::SettingsSession(const SettingsServices& services, Actions actions)
    : m_services(services), m_actions(std::move(actions)) {}

SettingsSession::~SettingsSession() = default;

QVariantList SettingsSession::tabs() {
    QVariantList list;
    for (const Tab& tab : tabTable)
        list << QVariantMap{{QStringLiteral("value"), int(tab.value)},
                            {QStringLiteral("name"), QString::fromLatin1(tab.name)},
                            {QStringLiteral("label"), QString::fromLatin1(tab.label)},
                            {QStringLiteral("symbol"), QString::fromLatin1(tab.symbol)}};
    return list;
}

void SettingsSession::setSelectedTabValue(int value) {
    if (value < 0 || value >= int(tabTable.size()) || value == selectedTabValue())
        return;
    m_selectedTab = SettingsTab(value);
    Q_EMIT selectedTabChanged();
}

QString SettingsSession::navigationTitle() const {
    return QString::fromLatin1(tabTable[std::size_t(m_selectedTab)].navigationTitle);
}

void SettingsSession::setSidebarVisible(bool visible) {
    if (visible == m_columnVisibility)
        return;
    m_columnVisibility = visible;
    Q_EMIT sidebarVisibleChanged();
}

AboutInformation* SettingsSession::about() {
    if (!m_about)
        m_about = std::make_unique<AboutInformation>(m_services.componentVersions);
    return m_about.get();
}

SettingsForm* SettingsSession::makeForm(QObject* owner) {
    return new SettingsForm(m_services, owner);
}

void SettingsSession::close() {
    m_actions.close();
}

void SettingsSession::zoomWindow() {
    m_actions.zoomWindow();
}

} // namespace framora
