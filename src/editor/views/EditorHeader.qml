// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Editor

/// The editor's header: the window's own buttons, the view's commands, and the toolbar.
WindowHeader {
    id: header

    required property EditorSession session
    required property EditorShortcuts shortcuts

    readonly property ScreenshotEditorViewModel viewModel: session.viewModel
    readonly property bool compact: width - Math.max(sidebarSpace, windowCluster.width) < 700

    onZoomRequested: session.zoomWindow()

    // Sets groups apart where there is room.
    component Gap: Item {
        visible: !header.compact
        width: 6
        height: 1
    }

    Row {
        id: windowCluster
        x: 12
        anchors.verticalCenter: parent.verticalCenter
        spacing: 4

        IconButton {
            objectName: "window.close"
            symbol: "window.close"
            symbolSize: 16
            help: Strings.localized("window.close")
            shortcut: header.shortcuts.close
            tint: Theme.secondaryText
            onClicked: header.session.close()
        }
        IconButton {
            objectName: "window.minimize"
            symbol: "window.minimize"
            symbolSize: 16
            help: Strings.localized("window.minimize")
            tint: Theme.secondaryText
            onClicked: header.session.miniaturize()
        }
        IconButton {
            objectName: "window.maximize"
            readonly property bool maximized: header.Window.window
                                              && header.Window.window.visibility === Window.Maximized
            symbol: maximized ? "window.restore" : "window.maximize"
            symbolSize: 16
            help: Strings.localized(maximized ? "window.restore" : "window.maximize")
            tint: Theme.secondaryText
            onClicked: header.session.zoomWindow()
        }
    }
    SidebarToggle {
        id: sidebarToggle
        x: Math.max(header.sidebarSpace - width - 16, windowCluster.x + windowCluster.width + 8)
        anchors.verticalCenter: parent.verticalCenter
        shown: header.session.sidebarVisible
        onClicked: header.session.sidebarVisible = !header.session.sidebarVisible
    }
    Row {
        x: Math.max(header.sidebarSpace, sidebarToggle.x + sidebarToggle.width) + 12
        anchors.verticalCenter: parent.verticalCenter
        spacing: 4

        IconButton {
            objectName: "undo"
            symbol: "arrow.uturn.backward"
            help: Strings.localized("undo")
            shortcut: header.shortcuts.undo
            enabled: header.viewModel.canUndo
            onClicked: header.viewModel.undo()
        }
        IconButton {
            objectName: "redo"
            symbol: "arrow.uturn.forward"
            help: Strings.localized("redo")
            shortcut: header.shortcuts.redo
            enabled: header.viewModel.canRedo
            onClicked: header.viewModel.redo()
        }
        Gap {}
        IconButton {
            objectName: "zoom.in"
            symbol: "plus.magnifyingglass"
            help: "Zoom In"
            shortcut: header.shortcuts.zoomIn
            onClicked: header.viewModel.zoomIn()
        }
        IconButton {
            objectName: "zoom.out"
            symbol: "minus.magnifyingglass"
            help: "Zoom Out"
            shortcut: header.shortcuts.zoomOut
            onClicked: header.viewModel.zoomOut()
        }
        Gap {}
        IconButton {
            objectName: "reset.disposition"
            symbol: "arrow.counterclockwise"
            help: "Reset Disposition"
            onClicked: header.viewModel.resetDisposition()
        }
        Gap {}
        ShareButton { session: header.session }
    }
    Row {
        anchors.right: parent.right
        anchors.rightMargin: 12
        anchors.verticalCenter: parent.verticalCenter
        spacing: 4
        Repeater {
            model: header.session.toolbarItems
            delegate: Loader {
                required property var modelData
                // The flexible space is the room between the two rows.
                visible: modelData.identifier !== "flexible"
                sourceComponent: !visible ? null
                               : modelData.identifier === "" ? space
                               : modelData.identifier === "CopyItem" || modelData.identifier === "SaveItem" ? wide : icon
                Component {
                    id: space
                    Item { implicitWidth: 4; implicitHeight: 32 }
                }
                Component {
                    id: icon
                    IconButton {
                        objectName: modelData.identifier
                        raised: true
                        symbol: modelData.symbol
                        text: modelData.label
                        help: modelData.toolTip
                        shortcut: header.shortcuts.ofToolbarItem(modelData.identifier)
                        onClicked: header.session.triggerToolbarItem(modelData.identifier)
                    }
                }
                Component {
                    id: wide
                    PushButton {
                        objectName: modelData.identifier
                        symbol: modelData.symbol
                        text: modelData.label
                        help: modelData.toolTip
                        shortcut: header.shortcuts.ofToolbarItem(modelData.identifier)
                        primary: modelData.identifier === "CopyItem"
                        raised: true
                        compact: header.compact
                        onClicked: header.session.triggerToolbarItem(modelData.identifier)
                    }
                }
            }
        }
    }
}
