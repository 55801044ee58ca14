// qmllint disable deferred-property-id
import QtQuick
import QtQuick.Templates as T
import Framora.Controls
import Framora.Editor

/// A preset's colours to choose from; a ring marks the chosen one.
T.AbstractButton {
    id: control

    required property var colors
    property double angle: 135
    property bool chosen: false
    property string caption: ""

    implicitWidth: 48
    implicitHeight: swatch.height + (caption !== "" ? 20 : 0)
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    Accessible.role: Accessible.RadioButton
    Accessible.name: caption !== "" ? caption : text

    contentItem: Item {
        Text {
            visible: control.caption !== ""
            anchors.bottom: parent.bottom
            width: parent.width
            text: control.caption
            color: control.chosen ? Theme.text : Theme.secondaryText
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
            outline: Theme.dark ? "#5a5d65" : "#c6c8d0"
        }
        Rectangle {
            anchors.fill: swatch
            anchors.margins: -3
            radius: 12
            color: "transparent"
            border.width: 2
            border.color: control.chosen ? Theme.accent : Theme.outline
            visible: control.chosen || control.hovered || control.visualFocus
        }
    }
}
