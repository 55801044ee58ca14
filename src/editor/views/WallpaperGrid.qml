// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
import Framora.Controls
import Framora.Editor

/// The background images on offer, and the button that imports another.
Column {
    id: editor

    required property ScreenshotEditorViewModel viewModel
    signal importRequested

    spacing: 14

    Grid {
        id: grid
        width: parent.width
        columns: 3
        spacing: 10
        Repeater {
            model: editor.viewModel.wallpaperURLs
            delegate: T.AbstractButton {
                id: entry
                required property string modelData
                required property int index
                readonly property bool chosen: String(editor.viewModel.selectedWallpaperURL) === modelData
                                               && editor.viewModel.hasBackgroundImage
                objectName: "wallpaper." + index
                width: (grid.width - 2 * grid.spacing) / 3
                height: Math.round(width * 0.66)
                hoverEnabled: true
                focusPolicy: Qt.TabFocus
                Accessible.role: Accessible.RadioButton
                Accessible.name: text
                text: editor.viewModel.wallpaperName(index)
                onClicked: editor.viewModel.selectWallpaper(modelData)
                background: Item {
                    Thumbnail {
                        anchors.fill: parent
                        image: editor.viewModel.wallpaperThumbnail(entry.index) // qmllint disable type
                        radius: 9
                        outline: Theme.dark ? "#5a5d65" : "#c6c8d0"
                    }
                    Rectangle {
                        anchors.fill: parent
                        anchors.margins: -3
                        radius: 12
                        color: "transparent"
                        border.width: 2
                        border.color: entry.chosen ? Theme.accent : Theme.outline
                        visible: entry.chosen || entry.hovered || entry.visualFocus
                    }
                }
            }
        }
    }
    PushButton {
        objectName: "import.image"
        width: parent.width
        text: Strings.localized("import.image")
        symbol: "plus.circle.fill"
        onClicked: editor.importRequested()
    }
}
