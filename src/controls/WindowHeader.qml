import QtQuick
import Framora.Controls

/// A window's one header. What stands on it is its own; everything else of it moves the window, and a double click asks
/// for its other size.
Item {
    id: header

    /// How far the sidebar reaches at the moment: its ground goes on behind the header.
    required property real sidebarSpace
    signal zoomRequested

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
        onDoubleClicked: header.zoomRequested()
    }
}
