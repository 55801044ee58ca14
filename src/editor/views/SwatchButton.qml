// qmllint disable deferred-property-id
import QtQuick
import Framora.Controls
import Framora.Editor

/// A preset's colours to choose from, a member of a group; a ring marks the chosen one.
GroupedChoice {
    id: control

    required property var colors
    property double angle: 135
    property string caption: ""

    implicitWidth: 48
    implicitHeight: 44 + (caption !== "" ? 20 : 0)
    Accessible.name: caption !== "" ? caption : text

    contentItem: Item {
        Text {
            visible: control.caption !== ""
            anchors.bottom: parent.bottom
            width: parent.width
            text: control.caption
            color: control.chosen || control.hovered ? Theme.text : Theme.secondaryText
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignHCenter
            font.family: Theme.fontFamily
            font.pixelSize: 11
            font.weight: control.chosen ? Font.DemiBold : Font.Normal
        }
    }
    background: Item {
        GradientSwatch {
            id: swatch
            width: parent.width
            height: 44
            radius: 9
            colors: control.colors
            angle: control.angle
            outline: Theme.swatchOutline
        }
        SwatchRing { anchors.fill: swatch; control: control; chosen: control.chosen }
    }
}
