import QtQuick
import Framora.Controls
import Framora.Editor

/// The colour of one field; it opens the colour panel when it is pressed, and a ring marks the one being edited.
Pressable {
    id: control

    required property string field
    required property color swatch
    required property ColorPanelBridge colorPanel
    readonly property bool editing: colorPanel.field === field

    implicitWidth: 44
    implicitHeight: 28
    Accessible.name: text
    Accessible.description: swatch.a === 0 ? "" : swatch.toString()
    onClicked: editing ? colorPanel.close() : colorPanel.open(field, visualFocus ? control : null)

    background: Item {
        GradientSwatch {
            anchors.fill: parent
            radius: 7
            colors: [control.swatch]
            outline: Theme.swatchOutline
        }
        RoundedBox {
            anchors.fill: parent
            anchors.margins: -3
            radius: 10
            color: "transparent"
            outlineWidth: 2
            outline: control.editing ? Theme.accent : Theme.outline
            visible: control.editing || control.hovered
        }
        FocusRing { radius: 10; shown: control.visualFocus }
    }
}
