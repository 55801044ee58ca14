// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Settings

/// The window's one header: its close button and the pane's title. Everything else of it moves the window.
Item {
    id: header

    required property SettingsSession session
    /// How far the sidebar reaches at the moment.
    required property real sidebarSpace

    Rectangle {
        x: header.sidebarSpace
        width: parent.width - x
        height: parent.height
        color: Theme.ground
    }
    MouseArea {
        property point pressedAt

        anchors.fill: parent
        onPressed: mouse => pressedAt = Qt.point(mouse.x, mouse.y)
        onPositionChanged: mouse => {
            // The window manager takes the pointer over; no release comes back.
            if (Math.abs(mouse.x - pressedAt.x) + Math.abs(mouse.y - pressedAt.y) > 6)
                header.Window.window.startSystemMove();
        }
        onDoubleClicked: header.session.zoomWindow()
    }
    IconButton {
        id: close
        objectName: "window.close"
        x: 12
        anchors.verticalCenter: parent.verticalCenter
        symbol: "window.close"
        symbolSize: 16
        help: Strings.localized("window.close")
        tint: Theme.secondaryText
        onClicked: header.session.close()
    }
    IconButton {
        id: toggle
        objectName: "sidebar.toggle"
        x: Math.max(header.sidebarSpace - width - 12, close.x + close.width + 4)
        anchors.verticalCenter: parent.verticalCenter
        symbol: "sidebar.left"
        contentItem: SidebarIcon { color: toggle.tint }
        help: Strings.localized(header.session.sidebarVisible ? "sidebar.hide" : "sidebar.show")
        tint: Theme.secondaryText
        onClicked: header.session.sidebarVisible = !header.session.sidebarVisible
    }
    Text {
        x: Math.max(header.sidebarSpace, toggle.x + toggle.width) + 20
        width: parent.width - x - 20
        anchors.verticalCenter: parent.verticalCenter
        text: header.session.navigationTitle
        color: Theme.text
        elide: Text.ElideRight
        font.family: Theme.fontFamily
        font.pixelSize: 15
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
}
