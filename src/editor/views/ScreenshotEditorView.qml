// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Editor

/// The root of an editor window: the sidebar's controls beside the live preview, under one header.
ThemedView {
    id: root

    required property EditorSession session

    readonly property ScreenshotEditorViewModel viewModel: session.viewModel
    readonly property real sidebarSpace: sidebar.x + sidebar.width

    /// One thing at a time: what is being dragged, the colour panel, what is being typed, the window. Edits are
    /// not lost by one press too many.
    function leave(): void {
        if (detail.cancelDrag())
            return;
        if (session.colorPanel.isOpen)
            session.colorPanel.close();
        else if (shortcuts.editingText)
            detail.forceActiveFocus(Qt.OtherFocusReason);
        else if (viewModel.mayLeave())
            shortcuts.closeAtRelease();
    }

    focus: true
    // A control that has the keys and a use for the space bar never lets it come here.
    Keys.onPressed: event => {
        if (event.key !== Qt.Key_Space || event.modifiers !== Qt.NoModifier)
            return;
        detail.panKeyHeld = true;
        event.accepted = true;
    }
    Keys.onReleased: event => {
        if (event.isAutoRepeat)
            return;
        if (event.key === Qt.Key_Space)
            detail.panKeyHeld = false;
        shortcuts.keyReleased(event.key);
    }
    Keys.onEscapePressed: event => {
        if (!event.isAutoRepeat)
            shortcuts.once(shortcuts.leave);
    }
    Window.onActiveChanged: {
        if (Window.active)
            return;
        detail.panKeyHeld = false;
        shortcuts.letGo();
    }
    // What had the keys may be gone, a panel for one.
    Window.onActiveFocusItemChanged: {
        if (Window.active && (!Window.activeFocusItem || Window.activeFocusItem === Window.contentItem))
            root.forceActiveFocus(Qt.OtherFocusReason);
    }

    // The room there is, as fitting counts it: with the sidebar, without the header.
    Binding {
        target: root.viewModel
        property: "canvasSize"
        value: Qt.size(detail.width + Theme.sidebarWidth, detail.height)
    }
    Component.onCompleted: viewModel.fitToWindow()

    Rectangle {
        anchors.fill: parent
        color: Theme.ground
    }

    ScreenshotPreviewCanvas {
        id: detail
        objectName: "canvas"
        x: root.session.sidebarVisible ? Theme.sidebarWidth : 0
        y: Theme.headerHeight
        width: parent.width - x
        height: parent.height - y
        clip: true
        // The linter knows no QImage.
        image: root.viewModel.originalImage // qmllint disable type
        config: root.viewModel.config
        dark: root.dark
        Accessible.role: Accessible.Graphic
        Accessible.name: Strings.localized("preview")
        Accessible.focusable: true
        onIsDraggingChanged: root.session.isDraggingScreenshot = isDragging
        onDragOffsetChanged: {
            if (isDragging)
                root.viewModel.offset = Qt.size(root.viewModel.lastOffset.width + dragOffset.width,
                                                root.viewModel.lastOffset.height + dragOffset.height);
        }
        onScreenshotOffsetChanged: offset => {
            // In this order: undo goes back to where the drag before ended.
            root.viewModel.setScreenshotOffset(offset);
            root.viewModel.lastOffset = root.viewModel.offset;
        }
        onZoomRequested: percent => root.viewModel.zoomTo(percent)
        onNudged: distance => root.viewModel.nudgeScreenshot(distance)

        Connections {
            target: root.viewModel
            function onFitted(): void { detail.centre(); }
        }
        ImageDropArea {
            objectName: "canvas.drop"
            anchors.fill: parent
            viewModel: root.viewModel
        }
        Rectangle {
            objectName: "canvas.focus"
            anchors.fill: parent
            anchors.margins: 2
            visible: detail.visualFocus
            color: "transparent"
            border.width: 2
            border.color: Theme.accent
            radius: Theme.radius
        }
    }

    ZoomButton {
        objectName: "zoom.text"
        anchors.right: detail.right
        anchors.bottom: detail.bottom
        anchors.margins: 12
        viewModel: root.viewModel
        shortcut: zoom === 100 ? shortcuts.fit : shortcuts.actualSize
    }

    EditorSidebar {
        id: sidebar
        objectName: "sidebar"
        x: root.session.sidebarVisible ? 0 : -width
        width: Theme.sidebarWidth
        height: parent.height
        visible: x > -width
        enabled: root.session.sidebarVisible
        session: root.session
        Behavior on x { NumberAnimation { duration: Theme.motion; easing.type: Easing.OutCubic } }
    }

    EditorHeader {
        id: header
        width: parent.width
        height: Theme.headerHeight
        session: root.session
        shortcuts: shortcuts
        sidebarSpace: root.sidebarSpace
    }

    Loader {
        active: root.session.colorPanel.isOpen
        x: Math.min(root.sidebarSpace + 16, root.width - width - 16)
        y: Theme.headerHeight + 12
        sourceComponent: ColorPanel { bridge: root.session.colorPanel }
    }

    // The frame that a title bar would draw.
    Rectangle {
        anchors.fill: parent
        color: "transparent"
        border.color: Theme.outline
    }
    ResizeMargins { anchors.fill: parent }

    // A press beside what is being typed ends it, before whatever is pressed acts.
    Item {
        anchors.fill: parent
        PointHandler {
            acceptedButtons: Qt.AllButtons
            onActiveChanged: {
                const typing = root.Window.activeFocusItem;
                if (active && shortcuts.editingText && !typing.contains(typing.mapFromItem(root, point.position)))
                    detail.forceActiveFocus(Qt.OtherFocusReason);
            }
        }
    }
    EditorShortcuts {
        id: shortcuts
        session: root.session
        leave: root.leave
    }
}
