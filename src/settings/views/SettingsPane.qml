import QtQuick
import Framora.Controls

/// A column of sections that scrolls.
ScrollPane {
    id: pane

    default property alias content: column.data

    objectName: "pane"
    contentHeight: column.implicitHeight + 32

    Column {
        id: column
        x: (pane.width - width) / 2
        y: 8
        width: Math.min(pane.width - 40, 560)
        spacing: 22
    }
}
