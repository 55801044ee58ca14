import QtQuick
import Framora.Controls
import Framora.Editor

/// A tilt's slider with the small button that lays the screenshot flat again.
Item {
    id: row

    required property string label
    required property double value
    signal moved(double value)

    implicitHeight: 20

    SliderWithDefault {
        objectName: row.objectName
        anchors.left: parent.left
        anchors.right: reset.left
        anchors.rightMargin: 4
        label: row.label
        from: -90
        to: 90
        defaultValue: 0
        value: row.value
        onMoved: value => row.moved(value)
    }
    IconButton {
        id: reset
        objectName: row.objectName + ".reset"
        anchors.right: parent.right
        anchors.rightMargin: -4
        anchors.verticalCenter: parent.verticalCenter
        width: 24
        height: 24
        symbol: "arrow.counterclockwise"
        symbolSize: 14
        tint: Theme.tertiaryText
        text: "Reset"
        help: "Reset"
        onClicked: row.moved(0)
    }
}
