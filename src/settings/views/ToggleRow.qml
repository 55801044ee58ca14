import QtQuick
import Framora.Controls
import Framora.Settings

/// A setting that is on or off; a click anywhere in the row turns it.
SettingRow {
    id: row

    required property bool checked
    /// The user wants the other state.
    signal toggled(bool checked)

    onClicked: toggle.wish(!row.checked)

    ToggleSwitch {
        id: toggle

        function wish(wanted: bool): void {
            row.toggled(wanted);
            // The user's click broke the binding.
            checked = Qt.binding(() => row.checked);
        }

        objectName: row.objectName + ".switch"
        text: row.title
        checked: row.checked
        Accessible.description: row.description
        onToggled: wish(checked)
    }
}
