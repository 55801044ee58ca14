import QtQuick
import Framora.Controls

/// The cap of one key.
Rectangle {
    id: cap

    required property string text

    width: Math.max(48, label.implicitWidth + 24)
    height: 48
    radius: 9
    color: Theme.raised
    border.color: Theme.raisedOutline

    // The cap's front edge.
    Rectangle {
        x: 6
        y: parent.height - 3
        width: parent.width - 12
        height: 1
        color: Theme.outline
    }
    Text {
        id: label
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -1
        text: cap.text
        color: Theme.text
        font.family: Theme.fontFamily
        font.pixelSize: cap.text.length > 1 ? 13 : 18
        font.weight: Font.Medium
    }
}
