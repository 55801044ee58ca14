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
    readonly property real contentWidth: grid.implicitWidth
    readonly property color ink: current || button.hovered ? Theme.text : Theme.secondaryText

    Grid {
        id: grid
        anchors.centerIn: parent
        columns: content.stacked ? 1 : 2
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
            font.pixelSize: content.stacked ? 11 : 12
            font.weight: Font.Medium
        }
    }
    FocusRing {
        anchors.margins: 0
        radius: Theme.radius - 2
        shown: content.button.visualFocus
    }
}
