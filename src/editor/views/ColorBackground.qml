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
    Row {
        id: row
        width: parent.width
        spacing: 10
        Repeater {
            model: Presets.magicPresets
            delegate: SwatchButton {
                required property var modelData
                required property int index
                objectName: "magicPreset." + index
                width: (row.width - 4 * row.spacing) / 5
                text: Strings.localized("color") + " " + (index + 1)
                colors: modelData
                chosen: editor.viewModel.magicPresetIndex === index
                onClicked: editor.viewModel.selectMagicPreset(index)
            }
        }
    }
}
