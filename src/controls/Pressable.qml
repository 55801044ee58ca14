// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
import Framora.Controls

/// A button of any look. Space, Return and a screen reader press it, and a key that is held down does so once; `help`
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
    Keys.onPressed: event => {
        const isReturn = event.key === Qt.Key_Return || event.key === Qt.Key_Enter;
        if (isReturn && !event.isAutoRepeat)
            control.clicked();
        event.accepted = isReturn || (event.key === Qt.Key_Space && event.isAutoRepeat);
    }
    // A held key comes as presses and releases, and each release of Space would be a click.
    Keys.onReleased: event => event.accepted = event.key === Qt.Key_Space && event.isAutoRepeat

    HoverHandler { id: hover }
    Loader {
        active: (hover.hovered || control.visualFocus) && control.help !== ""
        sourceComponent: HelpTip {
            parent: control
            y: control.helpAbove ? -implicitHeight - 6 : control.height + 6
            text: control.help
            shortcut: control.shortcut
            visible: !control.pressed
        }
    }
}
