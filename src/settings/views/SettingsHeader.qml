// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Settings

/// The settings' header: the window's close button and the pane's title.
WindowHeader {
    id: header

    required property SettingsSession session

    onZoomRequested: session.zoomWindow()

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
    SidebarToggle {
        id: toggle
        x: Math.max(header.sidebarSpace - width - 12, close.x + close.width + 4)
        anchors.verticalCenter: parent.verticalCenter
        shown: header.session.sidebarVisible
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
