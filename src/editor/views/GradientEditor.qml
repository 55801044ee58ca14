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
                    readonly property string field: "gradientConfig.color" + (index + 1)
                    objectName: field + ".well"
                    width: 34
                    height: 28
                    text: Strings.localized("color") + " " + (index + 1)
                    swatch: [editor.viewModel.gradientColor1, editor.viewModel.gradientColor2,
                             editor.viewModel.gradientColor3][index]
                    editing: editor.colorPanel.field === field
                    onClicked: editing ? editor.colorPanel.close() : editor.colorPanel.open(field)
                }
            }
        }
        PushButton {
            objectName: "useThreeColors"
            anchors.right: parent.right
            text: editor.three ? "Use 2 colors" : "Use 3 colors"
            symbol: editor.three ? "2.circle.fill" : "3.circle.fill"
            onClicked: {
                if (editor.colorPanel.field === "gradientConfig.color3")
                    editor.colorPanel.close();
                editor.viewModel.set("gradientConfig.useThreeColors", !editor.three);
            }
        }
    }
    SliderWithDefault {
        objectName: "gradientConfig.angle"
        width: parent.width
        label: Strings.localized("angle")
        to: 360
        defaultValue: 135
        value: editor.viewModel.config.gradientConfig.angle
        onMoved: value => editor.viewModel.set("gradientConfig.angle", value)
    }
    PushButton {
        objectName: "randomize"
        width: parent.width
        text: "Randomize"
        symbol: "dice.fill"
        onClicked: editor.viewModel.randomizeGradient()
    }
    Grid {
        id: grid
        width: parent.width
        columns: 3
        columnSpacing: 10
        rowSpacing: 12
        Repeater {
            model: Presets.gradientPresets
            delegate: SwatchButton {
                required property var modelData
                required property int index
                objectName: "gradientPreset." + index
                width: (grid.width - 2 * grid.columnSpacing) / 3
                colors: modelData.colors
                angle: modelData.angle
                caption: modelData.name
                chosen: editor.viewModel.gradientPresetIndex === index
                onClicked: editor.viewModel.selectGradientPreset(index)
            }
        }
    }
}
