// qmllint disable deferred-property-id
import QtQuick
import Framora.Controls

/// One export size: its platform's symbol, its name, ratio and size in pixels; its number is that of the catalogue.
GroupedChoice {
    id: control

    required property var modelData
    required property string platform

    implicitHeight: 32
    Accessible.name: platform + " " + modelData.name
    Accessible.description: modelData.ratio + ", " + size.text

    contentItem: Item {
        SymbolIcon {
            x: 8
            anchors.verticalCenter: parent.verticalCenter
            symbol: control.modelData.icon
            size: 16
            color: control.chosen ? Theme.accentInk : Theme.secondaryText
        }
        Text {
            x: 34
            anchors.verticalCenter: parent.verticalCenter
            width: ratio.x - x
            text: control.modelData.name
            color: Theme.text
            elide: Text.ElideRight
            font.family: Theme.fontFamily
            font.pixelSize: 12
            font.weight: control.chosen ? Font.DemiBold : Font.Medium
        }
        Text {
            id: ratio
            x: parent.width - 150
            anchors.verticalCenter: parent.verticalCenter
            width: 46
            text: control.modelData.ratio
            color: Theme.secondaryText
            horizontalAlignment: Text.AlignRight
            font.family: Theme.fontFamily
            font.pixelSize: 11
        }
        Text {
            id: size
            anchors.right: parent.right
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            text: control.modelData.width + " × " + control.modelData.height
            color: control.down ? Theme.secondaryText : Theme.tertiaryText
            font.family: Theme.monospacedFamily
            font.pixelSize: 11
        }
    }
    background: RoundedBox {
        radius: 6
        color: control.down ? Theme.pressedFill
             : control.chosen ? Theme.accentTint
             : control.hovered ? Theme.fill : "transparent"
        Behavior on color { ColorAnimation { duration: Theme.shortMotion } }
        FocusRing { gap: -2; radius: 6; shown: control.visualFocus }
    }
}
