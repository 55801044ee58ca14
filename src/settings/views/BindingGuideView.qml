// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Settings

/// What to put into the desktop's own keyboard settings, line by line, ready to be copied.
RoundedBox {
    id: guide

    required property ShortcutBinding binding

    visible: binding.explanation !== ""
    implicitHeight: column.implicitHeight + 24
    radius: Theme.radius
    color: Theme.surface

    Column {
        id: column
        x: 12
        y: 12
        width: parent.width - 24
        spacing: 8

        Text {
            objectName: guide.objectName + ".explanation"
            width: parent.width
            bottomPadding: 2
            text: guide.binding.explanation
            color: Theme.secondaryText
            wrapMode: Text.Wrap
            lineHeight: 1.1
            font.family: Theme.fontFamily
            font.pixelSize: 12
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        Repeater {
            id: rows

            // As wide as the longest of them, so that the lines stand below one another.
            readonly property real labelWidth: widest.reduce((width, label) => Math.max(width, label), 0)
            property var widest: []

            model: guide.binding.lines
            delegate: CopyLine {
                required property var modelData
                required property int index

                objectName: guide.objectName + ".line" + index
                width: column.width
                label: modelData.label
                text: modelData.text
                copyable: modelData.copied
                labelWidth: rows.labelWidth
                onLabelMeasured: width => {
                    const all = rows.widest.slice();
                    all[index] = width;
                    rows.widest = all;
                }
                onCopied: guide.binding.copy(index)
            }
        }
    }
}
