#include "platform/desktop/DesktopPrivacyPanes.h"

#include <QProcess>
#include <QStandardPaths>
#include <array>

namespace framora {

/// Command lines without quotes; null where a desktop has no such page.
struct DesktopPrivacyPanes::Routes {
    const char* desktop;
    const char* accessibility; ///< The shortcuts of the keyboard stand nearest to who may watch it.
    const char* screenCapture;
    const char* overview;
    const char* program;
};

DesktopPrivacyPanes::DesktopPrivacyPanes(const QString& desktop)
    : m_desktops(desktop.split(u':', Qt::SkipEmptyParts)) {}

QStringList DesktopPrivacyPanes::command(Route route) const {
    static constexpr std::array<Routes, 6> all{{
        {"GNOME", "gnome-control-center keyboard", "gnome-control-center applications",
         "gnome-control-center usage", "gnome-control-center"},
        {"KDE", "systemsettings kcm_keys", nullptr, "systemsettings kcm_workspace", "systemsettings"},
        {"XFCE", "xfce4-keyboard-settings", nullptr, nullptr, "xfce4-settings-manager"},
        {"X-Cinnamon", "cinnamon-settings keyboard", nullptr, "cinnamon-settings privacy",
         "cinnamon-settings"},
        {"MATE", "mate-keybinding-properties", nullptr, nullptr, "mate-control-center"},
        {"LXQt", "lxqt-config-globalkeyshortcuts", nullptr, nullptr, "lxqt-config"},
    }};
    for (const QString& desktop : m_desktops) {
        for (const Routes& routes : all) {
            if (desktop.compare(QLatin1String(routes.desktop), Qt::CaseInsensitive) != 0 || !(routes.*route))
                continue;
            QStringList command = QString::fromLatin1(routes.*route).split(u' ');
            command.front() = QStandardPaths::findExecutable(command.front());
            if (!command.front().isEmpty())
                return command;
        }
    }
    return {};
}

bool DesktopPrivacyPanes::open(Route route) const {
    QStringList words = command(route);
    if (words.isEmpty())
        return false;
    const QString program = words.takeFirst();
    return QProcess::startDetached(program, words);
}

DesktopPrivacyPanes::Route DesktopPrivacyPanes::routeTo(PrivacyPane pane) {
    return pane == PrivacyPane::accessibility ? &Routes::accessibility : &Routes::screenCapture;
}

bool DesktopPrivacyPanes::hasPage(PrivacyPane pane) const {
    return !command(routeTo(pane)).isEmpty();
}

bool DesktopPrivacyPanes::openPage(PrivacyPane pane) {
    return open(routeTo(pane));
}

bool DesktopPrivacyPanes::openPrivacyOverview() {
    return open(&Routes::overview);
}

bool DesktopPrivacyPanes::openSettingsProgram() {
    return open(&Routes::program);
}

} // namespace framora
