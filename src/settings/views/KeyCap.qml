import QtQuick
import Framora.Controls

/// The cap of one key.
RoundedBox {
    id: cap

    required property string text

    width: Math.max(48, label.implicitWidth + 24)
    height: 48
    radius: 9
    color: Theme.raisedOutline

    // The cap's top; what it leaves below is the front edge.
    RoundedBox {
        anchors.fill: parent
        anchors.margins: 1
        anchors.bottomMargin: 3
        radius: 8
        color: Theme.raised
    }
    Text {
        id: label
        anchors.centerIn: parent
        // The font hangs this sign from the top of its line.
        anchors.verticalCenterOffset: text === "⌃" ? 3 : -1
        text: cap.text
        color: Theme.text
        font.family: Theme.fontFamily
        font.pixelSize: cap.text.length > 1 ? 13 : 18
        font.weight: Font.Medium
    }
}
