// qmllint disable unqualified
import QtQuick
import Framora.Controls

/// A square button that shows a symbol; `bordered` gives it a ground of its own at rest.
Pressable {
    id: control

    required property string symbol
    property bool bordered: false
    /// For a button that stands on the window's ground.
    property bool raised: false
    property int symbolSize: 18
    property color tint: Theme.text

    implicitWidth: 32
    implicitHeight: 32
    opacity: enabled ? 1 : 0.4
    Accessible.name: text !== "" ? text : help

    contentItem: Item {
        SymbolIcon {
            anchors.centerIn: parent
            symbol: control.symbol
            size: control.symbolSize
            color: control.tint
        }
    }
    background: RoundedBox {
        radius: Theme.radius
        color: control.down ? Theme.pressedFill
             : control.hovered && control.enabled ? Theme.hoverFill
             : control.raised ? Theme.card
             : control.bordered ? Theme.fill : "transparent"
        outline: control.raised && !Theme.dark ? Theme.outline : "transparent"
        Behavior on color { ColorAnimation { duration: Theme.shortMotion } }
        FocusRing { shown: control.visualFocus }
    }
}
