import QtQuick
import Framora.Controls

/// The ring around a control that the keyboard has reached.
Rectangle {
    property bool shown: false

    anchors.fill: parent
    anchors.margins: -3
    visible: shown
    color: "transparent"
    border.width: 2
    border.color: Theme.accent
    radius: Theme.radius + 3
}
