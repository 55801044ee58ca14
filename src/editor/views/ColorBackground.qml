// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Editor

/// One colour: the user's own, or one of the presets.
Column {
    id: editor

    required property ScreenshotEditorViewModel viewModel
    required property ColorPanelBridge colorPanel

    spacing: 14

    ColorRow {
        objectName: "customColor"
        width: parent.width
        label: Strings.localized("color")
        field: "customColor"
        swatch: editor.viewModel.customColor
        colorPanel: editor.colorPanel
    }
    ChoiceGroup {
        id: choices
        width: parent.width
        implicitHeight: row.implicitHeight
        count: presets.count
        current: editor.viewModel.magicPresetIndex
        itemAt: index => presets.itemAt(index)
        Row {
            id: row
            width: parent.width
            spacing: 10
            Repeater {
                id: presets
                model: Presets.magicPresets
                delegate: SwatchButton {
                    required property var modelData
                    objectName: "magicPreset." + index
                    width: (row.width - 4 * row.spacing) / 5
                    text: Strings.localized("color") + " " + (index + 1)
                    group: choices
                    colors: modelData
                    onClicked: editor.viewModel.selectMagicPreset(index)
                }
            }
        }
    }
}
