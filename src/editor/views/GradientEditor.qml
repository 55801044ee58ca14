// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Editor

/// The procedural gradient: its kind, its colours, its angle, and the named ones to start from.
Column {
    id: editor

    required property ScreenshotEditorViewModel viewModel
    required property ColorPanelBridge colorPanel
    readonly property bool three: viewModel.config.gradientConfig.useThreeColors

    spacing: 14

    SegmentedPicker {
        objectName: "gradientStyle"
        width: parent.width
        label: Strings.localized("gradient")
        options: [
            { value: "linear", label: "Linear" },
            { value: "radial", label: "Radial" },
            { value: "angular", label: "Angular" }
        ]
        value: editor.viewModel.gradientStyle
        onChosen: value => editor.viewModel.set("gradientConfig.style", value)
    }
    Item {
        width: parent.width
        height: 32

        Row {
            anchors.verticalCenter: parent.verticalCenter
            spacing: 10
            Repeater {
                model: editor.three ? 3 : 2
                delegate: ColorWell {
                    required property int index
                    objectName: field + ".well"
                    width: 36
                    height: 28
                    text: Strings.localized("color") + " " + (index + 1)
                    field: "gradientConfig.color" + (index + 1)
                    swatch: [editor.viewModel.gradientColor1, editor.viewModel.gradientColor2,
                             editor.viewModel.gradientColor3][index]
                    colorPanel: editor.colorPanel
                }
            }
        }
        PushButton {
            objectName: "useThreeColors"
            anchors.right: parent.right
            text: editor.three ? "Use 2 colors" : "Use 3 colors"
            symbol: editor.three ? "2.circle.fill" : "3.circle.fill"
            onClicked: editor.viewModel.set("gradientConfig.useThreeColors", !editor.three)
        }
    }
    StyleSlider {
        viewModel: editor.viewModel
        field: "gradientConfig.angle"
        // A circle looks the same from everywhere.
        enabled: editor.viewModel.gradientStyle !== "radial"
        width: parent.width
        label: Strings.localized("angle")
        range: [0, 360]
        defaultValue: 135
        value: editor.viewModel.config.gradientConfig.angle
    }
    Item {
        width: parent.width
        height: Math.max(choices.implicitHeight, randomize.y + randomize.height)

        ChoiceGroup {
            id: choices
            width: parent.width
            implicitHeight: grid.implicitHeight
            count: presets.count
            current: editor.viewModel.gradientPresetIndex
            itemAt: index => presets.itemAt(index)
            Grid {
                id: grid

                readonly property real tileWidth: (width - 2 * columnSpacing) / 3

                width: parent.width
                columns: 3
                columnSpacing: 10
                rowSpacing: 12
                Repeater {
                    id: presets
                    model: Presets.gradientPresets
                    delegate: SwatchButton {
                        required property var modelData
                        objectName: "gradientPreset." + index
                        width: grid.tileWidth
                        group: choices
                        colors: modelData.colors
                        angle: modelData.angle
                        caption: modelData.name
                        onClicked: editor.viewModel.selectGradientPreset(index)
                    }
                }
            }
        }
        // On the tile after the last preset's.
        TileButton {
            id: randomize
            objectName: "randomize"
            x: presets.count % grid.columns * (grid.tileWidth + grid.columnSpacing)
            y: Math.floor(presets.count / grid.columns) * (height + grid.rowSpacing)
            width: grid.tileWidth
            text: "Randomize"
            symbol: "dice.fill"
            onClicked: editor.viewModel.randomizeGradient()
        }
    }
}
