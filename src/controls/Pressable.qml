import QtQuick
import QtQuick.Templates as T
import Framora.Controls

/// A button of any look. The pointer, Space, Return and a screen reader press it; `help`
/// and its keys show below it, or above.
T.AbstractButton {
    id: control

    property string help: ""
    property string shortcut: "" ///< Shown with the help.
    property bool helpAbove: false ///< Where there is no room below.

    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    Accessible.role: Accessible.Button
    Accessible.onPressAction: control.clicked()
    Keys.forwardTo: ReleaseKeys { id: keys; button: control; onStruck: control.clicked() }
    down: keys.heldKey ? true : undefined

    HelpArea {
        help: control.help
        shortcut: control.shortcut
        above: control.helpAbove
        hasKeys: control.visualFocus
        pressed: control.down
    }
}
