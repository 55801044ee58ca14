// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Editor

/// Colours to choose from, in rows of eight.
ChoiceGroup {
    id: choices

    required property ColorPanelBridge bridge
    required property var colors ///< "#rrggbb" each.
    property string label: "" ///< In front of each one's name, for screen readers.

    implicitHeight: grid.implicitHeight
    count: colors.length
    current: colors.indexOf(bridge.color.toString())
    itemAt: index => swatches.itemAt(index)

    Grid {
        id: grid
        width: parent.width
        columns: 8
        spacing: 8
        Repeater {
            id: swatches
            model: choices.colors
            delegate: GroupedChoice {
                id: swatch
                required property string modelData
                group: choices
                objectName: choices.objectName + "." + index
                width: (grid.width - 7 * grid.spacing) / 8
                height: width
                Accessible.name: (choices.label + " " + modelData).trim()
                onClicked: choices.bridge.setColor(modelData)
                background: Item {
                    GradientSwatch {
                        anchors.fill: parent
                        radius: width / 2
                        colors: [swatch.modelData]
                        outline: Theme.swatchOutline
                    }
                    RoundedBox {
                        anchors.fill: parent
                        anchors.margins: -3
                        radius: width / 2
                        color: "transparent"
                        outlineWidth: 2
                        outline: swatch.chosen ? Theme.accent : Theme.outline
                        visible: swatch.chosen || swatch.hovered
                    }
                    FocusRing {
                        gap: swatch.chosen ? 3 : 1
                        radius: width / 2
                        shown: swatch.visualFocus
                    }
                }
            }
        }
    }
}
