// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
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
            delegate: T.RadioButton {
                id: swatch
                required property string modelData
                required property int index
                objectName: choices.objectName + "." + index
                width: (grid.width - 7 * grid.spacing) / 8
                height: width
                hoverEnabled: true
                focusPolicy: choices.stop === index ? Qt.TabFocus : Qt.NoFocus
                Accessible.name: (choices.label + " " + modelData).trim()
                checked: choices.current === index
                Accessible.onToggleAction: swatch.clicked()
                Accessible.onPressAction: swatch.clicked()
                onActiveFocusChanged: if (activeFocus) choices.entered(index)
                onClicked: choices.bridge.setColor(modelData)
                Keys.onReturnPressed: event => { if (!event.isAutoRepeat) swatch.clicked(); }
                Keys.onEnterPressed: event => { if (!event.isAutoRepeat) swatch.clicked(); }
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
                        outline: choices.current === swatch.index ? Theme.accent : Theme.outline
                        visible: choices.current === swatch.index || swatch.hovered
                    }
                    FocusRing {
                        gap: choices.current === swatch.index ? 3 : 1
                        radius: width / 2
                        shown: swatch.visualFocus
                    }
                }
            }
        }
    }
}
