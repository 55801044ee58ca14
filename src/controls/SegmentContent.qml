import QtQuick
import QtQuick.Templates as T
import Framora.Controls

/// What one segment of a picker shows.
Item {
    id: content

    required property T.AbstractButton button
    required property string symbol
    required property bool stacked
    required property bool current
    readonly property int fullFontSize: stacked ? 11 : 12
    property int fontSize: fullFontSize
    /// At the full size of the font.
    readonly property real contentWidth: {
        const text = button.text !== "" ? metrics.advanceWidth : 0;
        const icon = symbol === "" ? 0 : stacked ? 20 : 16;
        return Math.ceil(stacked ? Math.max(text, icon) : text + icon + (text > 0 && icon > 0 ? grid.columnSpacing : 0));
    }
    readonly property color ink: current || button.hovered ? Theme.text : Theme.secondaryText

    TextMetrics {
        id: metrics
        text: content.button.text
        font.family: Theme.fontFamily
        font.pixelSize: content.fullFontSize
        font.weight: Font.Medium
    }
    Grid {
        id: grid
        anchors.centerIn: parent
        columns: content.stacked || content.symbol === "" ? 1 : 2
        columnSpacing: 6
        rowSpacing: 3
        horizontalItemAlignment: Grid.AlignHCenter
        verticalItemAlignment: Grid.AlignVCenter
        opacity: content.button.pressed ? 0.7 : 1
        SymbolIcon {
            visible: symbol !== ""
            symbol: content.symbol
            size: content.stacked ? 20 : 16
            color: content.current ? Theme.accentInk : content.ink
        }
        Text {
            visible: text !== ""
            text: content.button.text
            color: content.ink
            font.family: Theme.fontFamily
            font.pixelSize: content.fontSize
            font.weight: Font.Medium
        }
    }
    FocusRing {
        anchors.margins: 0
        radius: Theme.radius - 2
        shown: content.button.visualFocus
    }
}
