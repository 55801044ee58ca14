import QtQuick
import QtQuick.Templates as T
import Framora.Controls
import Framora.Editor

/// A colour that opens the colour panel when it is clicked; a ring marks the one being edited.
T.AbstractButton {
    id: control

    required property color swatch
    property bool editing: false

    implicitWidth: 44
    implicitHeight: 26
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    Accessible.role: Accessible.Button
    Accessible.name: text

    background: Item {
        GradientSwatch {
            anchors.fill: parent
            radius: 7
            colors: [control.swatch]
            outline: Theme.dark ? "#5a5d65" : "#b9bcc5"
        }
        Rectangle {
            anchors.fill: parent
            anchors.margins: -3
            radius: 10
            color: "transparent"
            border.width: 2
            border.color: control.editing ? Theme.accent : Theme.outline
            visible: control.editing || control.hovered
        }
        FocusRing { radius: 10; shown: control.visualFocus }
    }
}
