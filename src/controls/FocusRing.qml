import QtQuick
import Framora.Controls

/// The ring around a control that the keyboard has reached. `gap` is the room between the two.
Rectangle {
    property bool shown: false
    property int gap: 1

    anchors.fill: parent
    anchors.margins: -2 - gap
    visible: shown
    color: "transparent"
    border.width: 2
    border.color: Theme.accent
    radius: Theme.radius + 2 + gap
}
