import QtQuick
import Framora.Controls
import Framora.Settings

/// What concerns the program as a whole.
Section {
    id: section

    required property SettingsForm form

    title: Strings.localized("general")

    ToggleRow {
        objectName: "copyToClipboard"
        title: Strings.localized("copy to clipboard")
        symbol: "doc.on.clipboard"
        checked: section.form.copyToClipboard
        onToggled: checked => section.form.copyToClipboard = checked
    }
    RowSeparator {}
    ToggleRow {
        objectName: "startsAtLogin"
        title: Strings.localized("start at login")
        symbol: "power"
        checked: section.form.startsAtLogin
        onToggled: checked => section.form.startsAtLogin = checked
    }
}
