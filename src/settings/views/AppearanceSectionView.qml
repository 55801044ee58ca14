import QtQuick
import Framora.Controls
import Framora.Settings

/// How the program shows itself on the desktop.
Section {
    id: section

    required property SettingsForm form

    title: Strings.localized("appearance")

    ToggleRow {
        objectName: "showDockIcon"
        title: Strings.localized("show dock icon")
        symbol: "dock.rectangle"
        enabled: section.form.canHideDockIcon
        description: enabled ? "" : Strings.localized("dock.icon.always")
        checked: section.form.showDockIcon || !enabled
        onToggled: checked => section.form.showDockIcon = checked
    }
}
