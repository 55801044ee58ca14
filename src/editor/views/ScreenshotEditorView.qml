// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Editor

/// The root of an editor window: the sidebar's controls beside the live preview, under one header.
Item {
    id: root

    required property EditorSession session
    property bool dark: false
    property color accent: "#3d6df2"
    property bool reducedMotion: false

    readonly property ScreenshotEditorViewModel viewModel: session.viewModel
    readonly property real sidebarSpace: sidebar.x + sidebar.width

    Binding { target: Theme; property: "dark"; value: root.dark }
    Binding { target: Theme; property: "accent"; value: root.accent }
    Binding { target: Theme; property: "reducedMotion"; value: root.reducedMotion }

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
        Accessible.role: Accessible.Graphic
        Accessible.name: qsTr("Preview")
        onIsDraggingChanged: root.session.isDraggingScreenshot = isDragging
        onDragOffsetChanged: {
            if (isDragging)
                root.viewModel.offset = Qt.size(root.viewModel.lastOffset.width + dragOffset.width,
                                                root.viewModel.lastOffset.height + dragOffset.height);
        }
        onScreenshotOffsetChanged: offset => {
            root.viewModel.lastOffset = root.viewModel.offset;
            root.viewModel.setScreenshotOffset(offset);
        }
    }

    // The zoom in force.
    Rectangle {
        anchors.right: detail.right
        anchors.bottom: detail.bottom
        anchors.margins: 12
        width: zoomText.implicitWidth + 20
        height: 26
        radius: 13
        color: Theme.surface
        border.color: Theme.hairline
        Text {
            id: zoomText
            objectName: "zoom.text"
            anchors.centerIn: parent
            text: Math.round(root.viewModel.config.zoom) + "%"
            color: Theme.secondaryText
            font.family: Theme.fontFamily
            font.pixelSize: 12
            font.weight: Font.Medium
        }
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

    Shortcut {
        sequences: ["Escape"]
        onActivated: {
            if (root.session.colorPanel.isOpen)
                root.session.colorPanel.close();
            else
                root.session.close();
        }
    }
    Shortcut { sequences: [StandardKey.Close]; onActivated: root.session.close() }
    Shortcut { sequences: [StandardKey.Copy]; onActivated: root.session.triggerToolbarItem("CopyItem") }
    Shortcut { sequences: [StandardKey.Save]; onActivated: root.session.triggerToolbarItem("SaveItem") }
    Shortcut { sequences: ["Ctrl++", "Ctrl+="]; onActivated: root.viewModel.zoomIn() }
    Shortcut { sequences: ["Ctrl+-"]; onActivated: root.viewModel.zoomOut() }
    Shortcut { sequences: ["Ctrl+0"]; onActivated: root.session.triggerToolbarItem("ZoomFitItem") }
    Shortcut { sequences: ["Ctrl+1"]; onActivated: root.session.triggerToolbarItem("ZoomActualItem") }
}
