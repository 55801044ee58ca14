import QtQuick
import Framora.Controls

/// A row of a section: its caption, and beside it what the caption names.
Item {
    id: row

    required property string label
    default property alias content: holder.data

    implicitHeight: 32

    Label {
        anchors.verticalCenter: parent.verticalCenter
        width: Theme.captionWidth
        text: row.label
    }
    Item {
        id: holder
        x: Theme.captionWidth
        width: parent.width - x
        height: parent.height
    }
}
