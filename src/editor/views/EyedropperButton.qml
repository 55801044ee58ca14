import QtQuick
import Framora.Controls
import Framora.Editor

/// Lets the user take a colour from anywhere on the screen; where the desktop has no way to, it says so.
Item {
    id: control

    required property ColorPanelBridge bridge
    readonly property string hint: Strings.localized("eyedropper.unavailable")

    implicitWidth: 32
    implicitHeight: 32

    IconButton {
        objectName: control.objectName + ".button"
        anchors.fill: parent
        bordered: true
        symbol: "eyedropper"
        tint: control.bridge.isPickingFromScreen ? Theme.accentInk : Theme.text
        text: Strings.localized("eyedropper")
        help: !enabled ? control.hint : control.bridge.isPickingFromScreen ? "" : text
        enabled: control.bridge.canPickFromScreen
        Accessible.description: enabled ? "" : control.hint
        onClicked: control.bridge.pickFromScreen()
    }
}
