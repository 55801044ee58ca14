// qmllint disable unqualified deferred-property-id
import QtQuick
import Framora.Controls

/// A button among swatches, of their size: a symbol on the tile and the text below it.
Pressable {
    id: control

    required property string symbol

    implicitWidth: 48
    implicitHeight: 64
    Accessible.name: text

    contentItem: Item {
        SymbolIcon {
            anchors.horizontalCenter: parent.horizontalCenter
            y: 12
            symbol: control.symbol
            size: 20
            color: Theme.text
        }
        Text {
            anchors.bottom: parent.bottom
            width: parent.width
            text: control.text
            color: control.hovered ? Theme.text : Theme.secondaryText
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignHCenter
            font.family: Theme.fontFamily
            font.pixelSize: 11
        }
    }
    background: Item {
        RoundedBox {
            id: tile
            width: parent.width
            height: 44
            radius: 9
            color: Theme.stateFill(control.hovered, control.down)
            Behavior on color { ColorAnimation { duration: Theme.shortMotion } }
        }
        FocusRing { anchors.fill: tile; radius: 12; shown: control.visualFocus }
    }
}
