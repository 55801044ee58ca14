import QtQuick
import QtQuick.Templates as T
import Framora.Controls
import Framora.Editor

/// Saturation across, brightness up, for the hue in force. The arrow keys move by one percent, with Shift by ten.
T.Control {
    id: field

    required property ColorPanelBridge bridge

    function move(right: int, up: int): void {
        bridge.setHsv(bridge.hue, bridge.saturation + right / 100, bridge.brightness + up / 100);
    }

    implicitHeight: 152
    focusPolicy: Qt.TabFocus
    Accessible.role: Accessible.ColorChooser
    Accessible.name: Strings.localized("saturation.and.brightness")
    Accessible.description: Math.round(bridge.saturation * 100) + "%, " + Math.round(bridge.brightness * 100) + "%"
    Accessible.focusable: true
    Keys.onPressed: event => {
        const many = event.modifiers & Qt.ShiftModifier ? 10 : 1;
        const step = { [Qt.Key_Left]: [-many, 0], [Qt.Key_Right]: [many, 0], [Qt.Key_Up]: [0, many],
                       [Qt.Key_Down]: [0, -many] }[event.key];
        event.accepted = step !== undefined;
        if (step)
            field.move(step[0], step[1]);
    }

    background: Item {
        GradientSwatch {
            anchors.fill: parent
            radius: Theme.radius
            angle: 90
            colors: ["#ffffff", Qt.hsva(field.bridge.hue, 1, 1, 1)]
            shade: "#000000"
        }
        FocusRing { shown: field.visualFocus }
    }
    contentItem: Item {
        ColorDragArea {
            bridge: field.bridge
            control: field
            onPicked: (x, y) => field.bridge.setHsv(field.bridge.hue, x / width, 1 - y / height)
        }
        ColorHandle {
            x: field.bridge.saturation * parent.width - 8
            y: (1 - field.bridge.brightness) * parent.height - 8
            color: field.bridge.color
        }
    }
}
