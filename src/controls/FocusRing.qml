import QtQuick
import Framora.Controls

/// The ring around a control that the keyboard has reached. `gap` is the room between the two.
RoundedBox {
    property bool shown: false
    property int gap: 1

    anchors.fill: parent
    anchors.margins: -2 - gap
    visible: shown
    color: "transparent"
    outlineWidth: 2
    outline: Theme.accent
    radius: Theme.radius + 2 + gap
}
