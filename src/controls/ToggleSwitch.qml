import QtQuick
import QtQuick.Templates as T
import Framora.Controls

/// On or off. `text` is its accessible name; a caption stands beside it, in its row.
T.Switch {
    id: control

    implicitWidth: 40
    implicitHeight: 24
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    opacity: enabled ? 1 : 0.4
    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Keys.forwardTo: ReleaseKeys {
        id: keys
        button: control
        onStruck: {
            control.toggle();
            control.toggled();
        }
    }
    down: keys.heldKey ? true : undefined

    indicator: RoundedBox {
        width: 40
        height: 24
        radius: 12
        color: control.checked ? (control.hovered ? Qt.darker(Theme.accent, 1.07) : Theme.accent)
                               : control.hovered ? Theme.hoverFill : Theme.pressedFill
        Behavior on color { ColorAnimation { duration: Theme.shortMotion } }

        RoundedBox {
            // Wider while it is held, towards the other side.
            readonly property real stretch: control.down ? 3 : 0
            x: control.checked ? 18 - stretch : 2
            y: 2
            width: 20 + stretch
            height: 20
            radius: 10
            color: Theme.knob
            outline: Theme.dark ? "transparent" : "#14000000"
            Behavior on x { NumberAnimation { duration: Theme.motion; easing.type: Easing.OutCubic } }
            Behavior on width { NumberAnimation { duration: Theme.shortMotion } }
        }
        FocusRing { radius: 15; shown: control.visualFocus }
    }
}
