import QtQuick
import Framora.Controls

/// A pane with a side bar, which the icon font has not.
Item {
    id: icon

    property color color: Theme.text

    implicitWidth: 18
    implicitHeight: 14

    RoundedBox {
        anchors.centerIn: parent
        width: 18
        height: 14
        radius: 3.5
        color: "transparent"
        outlineWidth: 1.5
        outline: icon.color
        RoundedBox {
            x: 3
            y: 3
            width: 3.5
            height: parent.height - 6
            radius: 1
            color: icon.color
        }
    }
}
