import QtQuick
import Framora.Editor

/// A caption with the well of one colour field.
CaptionedRow {
    id: row

    required property string field
    required property color swatch
    required property ColorPanelBridge colorPanel

    implicitHeight: 28

    ColorWell {
        objectName: row.objectName + ".well"
        text: row.label
        field: row.field
        swatch: row.swatch
        colorPanel: row.colorPanel
    }
}
