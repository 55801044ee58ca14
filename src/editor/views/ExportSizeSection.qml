// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
import Framora.Controls
import Framora.Editor

/// The export sizes by platform.
Section {
    id: section

    required property ScreenshotEditorViewModel viewModel

    title: Strings.localized("export.size")

    Item {
        width: parent.width
        height: 24

        SymbolIcon {
            anchors.verticalCenter: parent.verticalCenter
            symbol: "rectangle.3.group"
            color: Theme.secondaryText
        }
        Label {
            x: 26
            anchors.verticalCenter: parent.verticalCenter
            text: Strings.localized("social.presets")
            font.weight: Font.Medium
        }
        IconButton {
            objectName: "social.clear"
            anchors.right: parent.right
            anchors.rightMargin: -4
            anchors.verticalCenter: parent.verticalCenter
            width: 28
            height: 28
            visible: section.viewModel.socialPresetIndex >= 0
            symbol: "xmark.circle.fill"
            tint: Theme.secondaryText
            text: "Clear"
            help: "Clear"
            onClicked: section.viewModel.selectSocialPreset(-1)
        }
    }
    Repeater {
        model: Presets.socialPlatforms
        delegate: Column {
            id: group
            required property var modelData
            width: parent.width
            spacing: 6

            Label {
                text: group.modelData.platform
                font.pixelSize: 11
                color: Theme.tertiaryText
            }
            Grid {
                id: grid
                width: parent.width
                columns: 2
                spacing: 6
                Repeater {
                    model: group.modelData.presets
                    delegate: T.AbstractButton {
                        id: preset
                        required property var modelData
                        readonly property bool chosen: section.viewModel.socialPresetIndex === modelData.index
                        objectName: "socialPreset." + modelData.index
                        width: (grid.width - grid.spacing) / 2
                        height: 44
                        hoverEnabled: true
                        focusPolicy: Qt.TabFocus
                        Accessible.role: Accessible.RadioButton
                        Accessible.name: group.modelData.platform + " " + modelData.name
                        onClicked: section.viewModel.selectSocialPreset(chosen ? -1 : modelData.index)
                        contentItem: Item {
                            SymbolIcon {
                                x: 10
                                anchors.verticalCenter: parent.verticalCenter
                                symbol: preset.modelData.icon
                                color: preset.chosen ? Theme.accent : Theme.secondaryText
                            }
                            Text {
                                x: 38
                                y: 7
                                width: parent.width - 44
                                text: preset.modelData.name
                                color: Theme.text
                                elide: Text.ElideRight
                                font.family: Theme.fontFamily
                                font.pixelSize: 12
                                font.weight: Font.Medium
                            }
                            Text {
                                x: 38
                                y: 23
                                text: preset.modelData.width + " × " + preset.modelData.height
                                color: Theme.tertiaryText
                                font.family: Theme.fontFamily
                                font.pixelSize: 11
                            }
                        }
                        background: Rectangle {
                            radius: Theme.radius
                            color: Theme.stateFill(preset.hovered, preset.pressed)
                            border.width: preset.chosen ? 2 : 0
                            border.color: Theme.accent
                            FocusRing { shown: preset.visualFocus }
                        }
                    }
                }
            }
        }
    }
}
