import QtQuick
import Framora.Controls

/// A titled card of controls, one below the other.
Item {
    id: section

    required property string title
    default property alias content: column.data

    implicitHeight: heading.height + 8 + card.height

    Text {
        id: heading
        x: 4
        width: parent.width - 8
        text: section.title
        color: Theme.text
        font.family: Theme.fontFamily
        font.pixelSize: 13
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    RoundedBox {
        id: card
        anchors.top: heading.bottom
        anchors.topMargin: 8
        width: parent.width
        height: column.implicitHeight + 28
        radius: Theme.cardRadius
        color: Theme.card
        outline: Theme.dark ? "transparent" : Theme.hairline
    }
    Column {
        id: column
        anchors.fill: card
        anchors.margins: 14
        spacing: 14
    }
}
