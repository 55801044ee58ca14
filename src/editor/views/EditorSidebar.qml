// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Editor

/// The style's controls on three tabs. A tab is made when it is first shown.
Rectangle {
    id: sidebar

    required property EditorSession session

    color: Theme.surface

    // A click beside the controls ends typing.
    component Ground: MouseArea {
        onPressed: mouse => {
            sidebar.forceActiveFocus(Qt.MouseFocusReason);
            mouse.accepted = false;
        }
    }

    Ground { anchors.fill: parent }
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
        tabs: true
        fitted: true
        label: Strings.localized("panels")
        options: [
            { value: 0, label: "Appearance", symbol: "paintbrush" },
            { value: 1, label: "Background", symbol: "photo" },
            { value: 2, label: "Layout", symbol: "square.on.square" }
        ]
        value: sidebar.session.selectedTab
        onChosen: value => sidebar.session.selectedTab = value
    }
    // The panel scrolls away under this line.
    Rectangle {
        anchors.bottom: pane.top
        width: parent.width - 1
        height: 1
        color: Theme.hairline
        opacity: pane.contentY > 0 ? 1 : 0
        Behavior on opacity { NumberAnimation { duration: Theme.shortMotion } }
    }
    ScrollPane {
        id: pane
        objectName: "sidebar.scroll"
        anchors.top: tabs.bottom
        anchors.topMargin: 12
        anchors.bottom: parent.bottom
        width: parent.width - 1
        contentHeight: panel.implicitHeight + 28

        Ground {
            width: pane.width
            height: Math.max(pane.height, pane.contentHeight)
        }
        Loader {
            id: panel
            x: 16
            y: 4
            width: sidebar.width - 32
            sourceComponent: [appearance, background, layout][sidebar.session.selectedTab]
            onLoaded: pane.restart()
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
}
