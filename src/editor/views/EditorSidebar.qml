// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Editor

/// The style's controls on three tabs. A tab is made when it is first shown.
Rectangle {
    id: sidebar

    required property EditorSession session

    color: Theme.surface

    Rectangle {
        anchors.right: parent.right
        width: 1
        height: parent.height
        color: Theme.hairline
    }
    SegmentedPicker {
        id: tabs
        objectName: "tabs"
        x: 16
        y: Theme.headerHeight + 4
        width: parent.width - 32
        height: 34
        options: [
            { value: 0, label: qsTr("Appearance"), symbol: "paintbrush" },
            { value: 1, label: qsTr("Background"), symbol: "photo" },
            { value: 2, label: qsTr("Layout"), symbol: "square.on.square" }
        ]
        value: sidebar.session.selectedTab
        onChosen: value => sidebar.session.selectedTab = value
    }
    Flickable {
        id: flickable
        objectName: "sidebar.scroll"
        anchors.top: tabs.bottom
        anchors.topMargin: 16
        anchors.bottom: parent.bottom
        width: parent.width - 1
        clip: true
        contentWidth: width
        contentHeight: panel.implicitHeight + 24
        boundsBehavior: Flickable.StopAtBounds
        interactive: contentHeight > height

        Loader {
            id: panel
            x: 16
            width: sidebar.width - 32
            sourceComponent: [appearance, background, layout][sidebar.session.selectedTab]
            onLoaded: flickable.contentY = 0
        }
        Component {
            id: appearance
            AppearancePanel { viewModel: sidebar.session.viewModel; colorPanel: sidebar.session.colorPanel }
        }
        Component {
            id: background
            BackgroundPanel {
                viewModel: sidebar.session.viewModel
                colorPanel: sidebar.session.colorPanel
                onImportRequested: sidebar.session.importBackgroundImage()
            }
        }
        Component {
            id: layout
            LayoutPanel { viewModel: sidebar.session.viewModel }
        }
    }
    // Where the panel stands, while it is longer than its room.
    Rectangle {
        visible: flickable.interactive
        anchors.right: parent.right
        anchors.rightMargin: 4
        y: flickable.y + flickable.visibleArea.yPosition * flickable.height
        width: 4
        height: flickable.visibleArea.heightRatio * flickable.height
        radius: 2
        color: Theme.tertiaryText
        opacity: flickable.moving || hover.hovered ? 0.5 : 0
        Behavior on opacity { NumberAnimation { duration: Theme.motion } }
    }
    HoverHandler { id: hover }
}
