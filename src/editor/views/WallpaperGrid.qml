// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Editor

/// The background images on offer, and the button that imports another; a file that is dropped here is imported too.
/// What is more than a few rows scrolls by itself, so that the button stays in reach, and only what shows is made.
Column {
    id: editor

    required property ScreenshotEditorViewModel viewModel
    signal importRequested

    readonly property int gap: 10
    readonly property int rowsAtMost: 4

    spacing: 14

    GridView {
        id: grid

        readonly property int rows: Math.ceil(count / 3)
        readonly property bool scrolls: rows > editor.rowsAtMost

        objectName: "wallpapers"
        // Rings need a little room around the thumbnails; half a row more says that there is more.
        x: -4
        width: parent.width + 4 + editor.gap
        height: scrolls ? (editor.rowsAtMost + 0.5) * cellHeight : Math.max(1, rows) * cellHeight - editor.gap + 8
        visible: count > 0
        clip: true
        topMargin: 4
        leftMargin: 4
        cellWidth: (editor.width + editor.gap) / 3
        cellHeight: Math.round((cellWidth - editor.gap) * 0.66) + editor.gap
        boundsBehavior: Flickable.StopAtBounds
        interactive: scrolls
        keyNavigationEnabled: true
        highlightMoveDuration: Theme.motion
        model: editor.viewModel.wallpaperURLs
        delegate: WallpaperButton {
            id: entry

            required property string modelData

            objectName: "wallpaper." + index
            width: grid.cellWidth - editor.gap
            height: grid.cellHeight - editor.gap
            chosen: editor.viewModel.selectedWallpaperIndex === index
            stop: grid.currentIndex === index
            text: editor.viewModel.wallpaperName(index)
            thumbnail: editor.viewModel.wallpaperThumbnail(index) // qmllint disable type
            onClicked: {
                grid.currentIndex = index;
                editor.viewModel.selectWallpaper(entry.modelData);
            }
        }

        // Where the rows stand that show, beside them in the card's margin.
        RoundedBox {
            parent: grid
            anchors.right: parent.right
            anchors.rightMargin: 1
            y: 4 + grid.visibleArea.yPosition * (grid.height - 8)
            width: 4
            height: grid.visibleArea.heightRatio * (grid.height - 8)
            radius: 2
            visible: grid.scrolls
            color: Theme.tertiaryText
            opacity: 0.4
        }
    }
    Item {
        width: parent.width
        height: 20
        visible: editor.viewModel.isLoadingWallpapers

        BusyRing {
            id: busy
            anchors.verticalCenter: parent.verticalCenter
            running: parent.visible
        }
        Label {
            objectName: "loading.wallpapers"
            anchors.verticalCenter: parent.verticalCenter
            x: busy.width + 8
            text: Strings.localized("loading.wallpapers")
        }
    }
    PushButton {
        objectName: "import.image"
        width: parent.width
        text: Strings.localized("import.image")
        symbol: "plus.circle.fill"
        onClicked: editor.importRequested()

        // As large as all there is to drop on.
        ImageDropArea {
            objectName: "wallpapers.drop"
            x: 0
            y: -parent.y
            width: parent.width
            height: editor.height
            radius: Theme.radius
            viewModel: editor.viewModel
        }
    }
}
