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
        anchors.bottom: flickable.top
        width: parent.width - 1
        height: 1
        color: Theme.hairline
        opacity: flickable.contentY > 0 ? 1 : 0
        Behavior on opacity { NumberAnimation { duration: Theme.shortMotion } }
    }
    Flickable {
        id: flickable

        /// Brings what the keyboard has reached into view, with room around it.
        function reveal(item: Item): void {
            let above = item;
            while (above && above !== panel.item)
                above = above.parent;
            if (!above || height <= 0)
                return;
            const top = item.mapToItem(contentItem, 0, 0).y;
            const room = Math.min(24, Math.max(0, (height - item.height) / 2));
            const wanted = Math.max(top + item.height + room - height, Math.min(contentY, top - room));
            scrollTo.to = Math.max(0, Math.min(contentHeight - height, wanted));
            if (scrollTo.to !== contentY)
                scrollTo.restart();
        }

        objectName: "sidebar.scroll"
        anchors.top: tabs.bottom
        anchors.topMargin: 12
        anchors.bottom: parent.bottom
        width: parent.width - 1
        clip: true
        contentWidth: width
        contentHeight: panel.implicitHeight + 28
        boundsBehavior: Flickable.StopAtBounds
        interactive: contentHeight > height

        Ground {
            width: flickable.width
            height: Math.max(flickable.height, flickable.contentHeight)
        }
        NumberAnimation {
            id: scrollTo
            target: flickable
            property: "contentY"
            duration: Theme.motion
            easing.type: Easing.OutCubic
        }
        Connections {
            target: sidebar.Window.window
            function onActiveFocusItemChanged(): void {
                const item = sidebar.Window.window.activeFocusItem;
                if (item)
                    flickable.reveal(item);
            }
        }
        Loader {
            id: panel
            x: 16
            y: 4
            width: sidebar.width - 32
            sourceComponent: [appearance, background, layout][sidebar.session.selectedTab]
            onLoaded: {
                scrollTo.stop();
                flickable.contentY = 0;
            }
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
    RoundedBox {
        visible: flickable.interactive
        anchors.right: parent.right
        anchors.rightMargin: 4
        y: flickable.y + flickable.visibleArea.yPosition * flickable.height
        width: 4
        height: flickable.visibleArea.heightRatio * flickable.height
        radius: 2
        color: Theme.tertiaryText
        opacity: flickable.moving || scrollTo.running || hover.hovered ? 0.5 : 0
        Behavior on opacity { NumberAnimation { duration: Theme.motion } }
    }
    HoverHandler { id: hover }
}
