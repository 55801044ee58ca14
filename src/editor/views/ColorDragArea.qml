import QtQuick
import Framora.Editor

/// The pointer on a part of the colour panel: what one hold picks is one edit.
MouseArea {
    id: area

    required property ColorPanelBridge bridge
    /// What takes the keys.
    required property Item control
    /// The pointer is there, possibly outside.
    signal picked(real x, real y)

    anchors.fill: parent
    preventStealing: true
    onPressed: mouse => {
        control.forceActiveFocus(Qt.MouseFocusReason);
        bridge.beginEdit();
        picked(mouse.x, mouse.y);
    }
    onPositionChanged: mouse => picked(mouse.x, mouse.y)
    onReleased: bridge.endEdit()
    onCanceled: bridge.endEdit()
}
