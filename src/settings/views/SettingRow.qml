import QtQuick
import Framora.Controls

/// One setting in a section: what it is on the left, its control on the right, or below where words would break.
Item {
    id: row

    required property string title
    property string symbol: ""
    property color symbolColor: Theme.secondaryText
    property string description: ""
    default property alias control: slot.data

    /// A click on the words.
    signal clicked

    readonly property bool stacked: texts.x + Math.max(100, Math.ceil(longestWord.advanceWidth)) + 18 + slot.width > width

    width: parent.width
    implicitHeight: stacked ? texts.implicitHeight + 10 + slot.height
                            : Math.max(24, texts.implicitHeight, slot.height)

    TextMetrics {
        id: longestWord
        text: row.title.split(" ").reduce((longest, word) => word.length > longest.length ? word : longest, "")
        font: title.font
    }

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
        y: row.stacked ? 0 : (row.height - height) / 2
        width: row.stacked ? row.width - x : slot.x - x - 16
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
        x: row.stacked ? texts.x : row.width - width
        y: row.stacked ? texts.height + 10 : (row.height - height) / 2
        width: childrenRect.width
        height: childrenRect.height
    }
}
