import QtQuick
import Framora.Controls
import Framora.Editor

/// A caption with the well of one colour field.
Item {
    id: row

    required property string label
    required property string field
    required property color swatch
    required property ColorPanelBridge colorPanel

    implicitHeight: 26

    Label {
        anchors.verticalCenter: parent.verticalCenter
        text: row.label
    }
    ColorWell {
        objectName: row.objectName + ".well"
        anchors.right: parent.right
        text: row.label
        swatch: row.swatch
        editing: row.colorPanel.field === row.field
        onClicked: editing ? row.colorPanel.close() : row.colorPanel.open(row.field)
    }
}
