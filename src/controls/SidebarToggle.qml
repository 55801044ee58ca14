import QtQuick
import Framora.Controls

/// Shows and hides a window's sidebar.
IconButton {
    id: control

    required property bool shown

    objectName: "sidebar.toggle"
    symbol: "sidebar.left"
    contentItem: SidebarIcon { color: control.tint }
    help: Strings.localized(shown ? "sidebar.hide" : "sidebar.show")
}
