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

    implicitHeight: 28

    Label {
        anchors.verticalCenter: parent.verticalCenter
        width: Theme.captionWidth
        text: row.label
    }
    ColorWell {
        objectName: row.objectName + ".well"
        x: Theme.captionWidth
        text: row.label
        field: row.field
        swatch: row.swatch
        colorPanel: row.colorPanel
    }
}
