import QtQuick
import QtQuick.Templates as T
import Framora.Controls
import Framora.Editor

/// The hue, round the circle once. The arrow keys move by one degree, with Shift by ten.
T.Slider {
    id: slider

    required property ColorPanelBridge bridge
    // What screen readers are told of the range.
    readonly property real minimumValue: from
    readonly property real maximumValue: to

    function turn(degrees: real): void {
        bridge.setHsv(degrees / 360, bridge.saturation, bridge.brightness);
    }

    implicitHeight: 16
    from: 0
    to: 360
    stepSize: 1
    value: bridge.hue * 360
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    Accessible.role: Accessible.Slider
    Accessible.name: Strings.localized("hue")
    onValueChanged: if (Math.abs(value - bridge.hue * 360) > 1e-6) turn(value)
    Keys.onPressed: event => {
        const many = event.modifiers & Qt.ShiftModifier ? 10 : 1;
        const step = { [Qt.Key_Left]: -many, [Qt.Key_Down]: -many, [Qt.Key_Right]: many, [Qt.Key_Up]: many }[event.key];
        event.accepted = step !== undefined;
        if (step)
            slider.turn(Math.round(slider.bridge.hue * 360) + step);
    }

    background: Item {
        GradientSwatch {
            anchors.fill: parent
            anchors.topMargin: 3
            anchors.bottomMargin: 3
            radius: 5
            angle: 90
            colors: ["#ff0000", "#ffff00", "#00ff00", "#00ffff", "#0000ff", "#ff00ff", "#ff0000"]
        }
    }
    handle: ColorHandle {
        x: slider.bridge.hue * (slider.width - 16)
        color: Qt.hsva(slider.bridge.hue, 1, 1, 1)
        FocusRing { radius: 11; shown: slider.visualFocus }
    }
    ColorDragArea {
        bridge: slider.bridge
        control: slider
        onPicked: x => slider.turn(Math.max(0, Math.min(1, (x - 8) / (width - 16))) * 360)
    }
}
