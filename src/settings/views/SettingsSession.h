#pragma once

#include "settings/SettingsForm.h"
#include "settings/SettingsServices.h"
#include "settings/views/AboutInformation.h"

#include <QObject>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

namespace framora {

/// The entries of the settings window's sidebar.
enum class SettingsTab { settings, about };

/// What one open settings window holds, whichever pane it shows.
class SettingsSession final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the settings window")
    /// One map an entry: "value", "name", "label", "symbol".
    Q_PROPERTY(QVariantList tabs READ tabs CONSTANT FINAL)
    Q_PROPERTY(
        int selectedTab READ selectedTabValue WRITE setSelectedTabValue NOTIFY selectedTabChanged FINAL)
    Q_PROPERTY(bool showsSettings READ showsSettings NOTIFY selectedTabChanged FINAL)
    Q_PROPERTY(QString navigationTitle READ navigationTitle NOTIFY selectedTabChanged FINAL)
    Q_PROPERTY(
        bool sidebarVisible READ sidebarVisible WRITE setSidebarVisible NOTIFY sidebarVisibleChanged FINAL)
    Q_PROPERTY(framora::AboutInformation* about READ about CONSTANT FINAL)

public:
    /// What the view asks of its window.
    struct Actions {
        std::function<void()> close;
        std::function<void()> zoomWindow;
    };

    SettingsSession(const SettingsServices& services, Actions actions);
    ~SettingsSession() override;

    static QVariantList tabs();
    SettingsTab selectedTab() const { return m_selectedTab; }
    int selectedTabValue() const { return int(m_selectedTab); }
    void setSelectedTabValue(int value);
    bool showsSettings() const { return m_selectedTab == SettingsTab::settings; }
    QString navigationTitle() const;
    bool sidebarVisible() const { return m_columnVisibility; }
    void setSidebarVisible(bool visible);
    /// Made when it is first shown.
    AboutInformation* about();

    /// A form over what is stored now. It belongs to `owner`, and ends with it.
    Q_INVOKABLE framora::SettingsForm* makeForm(QObject* owner);
    Q_INVOKABLE void close();
    Q_INVOKABLE void zoomWindow();

Q_SIGNALS:
    void selectedTabChanged();
    void sidebarVisibleChanged();

private:
    SettingsServices m_services;
    Actions m_actions;
    SettingsTab m_selectedTab = SettingsTab::settings;
    bool m_columnVisibility = true; ///< Whether the sidebar shows.
    std::unique_ptr<AboutInformation> m_about;
};

} // namespace framora
