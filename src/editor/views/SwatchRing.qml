import QtQuick
import QtQuick.Templates as T
import Framora.Controls

/// The rim of a swatch or thumbnail: quiet under the pointer, in the accent with a mark when it is chosen, and around
/// that the ring of the keyboard.
Item {
    id: ring

    required property T.AbstractButton control
    required property bool chosen

    RoundedBox {
        anchors.fill: parent
        anchors.margins: -3
        radius: 12
        color: "transparent"
        outlineWidth: 2
        outline: ring.chosen ? Theme.accent : ring.control.down ? Theme.tertiaryText : Theme.outline
        visible: ring.chosen || ring.control.hovered
    }
    RoundedBox {
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: -3
        width: 16
        height: 16
        radius: 8
        visible: ring.chosen
        color: Theme.accent
        SymbolIcon {
            anchors.centerIn: parent
            symbol: "checkmark"
            size: 12
            color: Theme.accentText
        }
    }
    FocusRing { gap: ring.chosen ? 3 : 1; radius: ring.chosen ? 14 : 12; shown: ring.control.visualFocus }
}
