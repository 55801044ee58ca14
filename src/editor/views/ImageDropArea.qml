import QtQuick
import Framora.Controls
import Framora.Editor

/// Takes picture files of this computer as backgrounds, and shows that it would.
DropArea {
    id: area

    required property ScreenshotEditorViewModel viewModel
    property real radius: 0

    keys: ["text/uri-list"]
    onEntered: drag => drag.accepted = drag.urls.some(url => String(url).startsWith("file:"))
    onDropped: drop => {
        if (area.viewModel.dropBackgroundImages(drop.urls))
            drop.accept(Qt.CopyAction);
        else
            drop.accepted = false;
    }

    Rectangle {
        objectName: area.objectName + ".highlight"
        anchors.fill: parent
        visible: area.containsDrag
        color: Qt.alpha(Theme.accent, 0.12)
        border.width: 2
        border.color: Theme.accent
        radius: area.radius

        RoundedBox {
            // Two rows of thumbnails would vanish behind it.
            visible: area.height > 160
            anchors.centerIn: parent
            width: caption.implicitWidth + 24
            height: 32
            radius: height / 2
            color: Theme.accent
            Text {
                id: caption
                anchors.centerIn: parent
                text: Strings.localized("drop.background")
                color: Theme.accentText
                font.family: Theme.fontFamily
                font.pixelSize: 13
                font.weight: Font.Medium
            }
        }
    }
}
