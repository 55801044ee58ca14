// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Editor

/// The export sizes by platform.
Section {
    id: section

    required property ScreenshotEditorViewModel viewModel

    title: Strings.localized("export.size")

    Item {
        width: parent.width
        height: 28

        SymbolIcon {
            anchors.verticalCenter: parent.verticalCenter
            symbol: "rectangle.3.group"
            color: Theme.secondaryText
        }
        Label {
            x: 26
            anchors.verticalCenter: parent.verticalCenter
            text: Strings.localized("social.presets")
            color: Theme.text
            font.weight: Font.Medium
        }
        IconButton {
            objectName: "social.clear"
            anchors.right: parent.right
            anchors.rightMargin: -4
            width: 28
            height: 28
            visible: section.viewModel.socialPresetIndex >= 0
            symbol: "xmark.circle.fill"
            tint: Theme.secondaryText
            text: Strings.localized("clear")
            help: Strings.localized("clear")
            onClicked: section.viewModel.selectSocialPreset(-1)
        }
    }
    ChoiceGroup {
        id: choices

        width: parent.width
        implicitHeight: column.implicitHeight
        count: Presets.socialPresetCount
        current: section.viewModel.socialPresetIndex
        itemAt: index => section.memberOf(index)

        Column {
            id: column
            width: parent.width
            spacing: 12
            Repeater {
                id: platforms
                model: Presets.socialPlatforms
                delegate: Column {
                    id: entry

                    required property var modelData
                    readonly property int first: modelData.presets[0].index

                    function member(index: int): Item {
                        return rows.itemAt(index - first);
                    }

                    width: column.width
                    spacing: 2
                    Label {
                        text: entry.modelData.platform
                        height: 20
                        font.pixelSize: 11
                        font.weight: Font.Medium
                        color: Theme.tertiaryText
                    }
                    Repeater {
                        id: rows
                        model: entry.modelData.presets
                        delegate: SocialPresetRow {
                            objectName: "socialPreset." + index
                            // Its symbols stand below the captions, and its ground reaches out of the column.
                            x: -8
                            width: entry.width + 16
                            platform: entry.modelData.platform
                            index: modelData.index
                            group: choices
                            onClicked: section.viewModel.selectSocialPreset(chosen ? -1 : index)
                        }
                    }
                }
            }
        }
    }

    /// The row of a place in the catalogue.
    function memberOf(index: int): Item {
        for (let i = platforms.count - 1; i >= 0; --i)
            if (platforms.itemAt(i).first <= index)
                return platforms.itemAt(i).member(index);
        return null;
    }
}
