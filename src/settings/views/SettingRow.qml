import QtQuick
import Framora.Controls

/// One setting in a section: what it is on the left, its control on the right.
Item {
    id: row

    required property string title
    property string symbol: ""
    property color symbolColor: Theme.secondaryText
    property string description: ""
    default property alias control: slot.data

    /// A click on the words.
    signal clicked

    width: parent.width
    implicitHeight: Math.max(24, texts.implicitHeight, slot.childrenRect.height)

    TapHandler { onTapped: row.clicked() }
    SymbolIcon {
        visible: row.symbol !== ""
        y: Math.round((title.height - height) / 2) + texts.y
        symbol: row.symbol
        size: 18
        color: row.symbolColor
    }
    Column {
        id: texts
        x: row.symbol !== "" ? 30 : 0
        anchors.verticalCenter: parent.verticalCenter
        width: slot.x - x - 16
        spacing: 3

        Text {
            id: title
            width: parent.width
            text: row.title
            color: Theme.text
            wrapMode: Text.Wrap
            font.family: Theme.fontFamily
            font.pixelSize: 13
            font.weight: Font.Medium
        }
        Text {
            visible: row.description !== ""
            width: parent.width
            text: row.description
            color: Theme.secondaryText
            wrapMode: Text.Wrap
            lineHeight: 1.1
            font.family: Theme.fontFamily
            font.pixelSize: 12
        }
    }
    Item {
        id: slot
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        width: childrenRect.width
        height: childrenRect.height
    }
}
