// qmllint disable unqualified deferred-property-id
import QtQuick
import Framora.Controls

/// A button with an optional symbol and a caption; `primary` is the one that carries the accent.
Pressable {
    id: control

    property string symbol: ""
    property string accessibleName: text
    property bool primary: false
    /// For a button that stands on the window's ground.
    property bool raised: false
    /// Shows the symbol alone.
    property bool compact: false
    readonly property color ink: primary ? Theme.accentText : Theme.text

    implicitHeight: 32
    implicitWidth: compact ? 40 : Math.ceil(row.implicitWidth) + (symbol !== "" ? 26 : 24)
    opacity: enabled ? 1 : 0.4
    Accessible.name: accessibleName

    contentItem: Item {
        Row {
            id: row
            anchors.centerIn: parent
            spacing: 7
            SymbolIcon {
                visible: control.symbol !== ""
                anchors.verticalCenter: parent.verticalCenter
                symbol: control.symbol
                size: 17
                color: control.ink
            }
            Text {
                visible: !control.compact
                anchors.verticalCenter: parent.verticalCenter
                text: control.text
                color: control.ink
                font.family: Theme.fontFamily
                font.pixelSize: 13
                font.weight: Font.Medium
            }
        }
    }
    background: RoundedBox {
        radius: Theme.radius
        color: control.primary ? (control.down ? Qt.darker(Theme.accent, 1.18)
                                  : control.hovered ? Qt.darker(Theme.accent, 1.07) : Theme.accent)
                               : control.raised && !control.hovered && !control.down
                                 ? Theme.card : Theme.stateFill(control.hovered, control.down)
        outline: control.raised && !control.primary && !Theme.dark ? Theme.outline : "transparent"
        Behavior on color { ColorAnimation { duration: Theme.shortMotion } }
        FocusRing { shown: control.visualFocus }
    }
}
