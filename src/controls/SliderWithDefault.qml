import QtQuick
import QtQuick.Templates as T
import Framora.Controls

/// A captioned slider that knows its default: a double click, or Delete, goes back to it.
Item {
    id: control

    property string label: ""
    required property double value
    property double from: 0
    property double to: 1
    required property double defaultValue
    property double step: 0 ///< 0 is continuous.
    property bool showValue: true
    property string unit: ""
    property int decimals: 0
    signal moved(double value)

    readonly property string valueText: SliderValueText.text(value, decimals, unit)

    function reset(): void {
        moved(defaultValue);
    }

    implicitHeight: 20
    opacity: enabled ? 1 : 0.4

    Label {
        id: caption
        anchors.verticalCenter: parent.verticalCenter
        width: control.label !== "" ? 80 : 0
        text: control.label
    }
    T.Slider {
        id: slider

        readonly property real defaultPosition: (control.defaultValue - from) / (to - from)
        readonly property real zeroPosition: from < 0 && to > 0 ? -from / (to - from) : 0

        objectName: control.objectName + ".slider"
        anchors.left: caption.right
        anchors.right: number.left
        anchors.rightMargin: control.showValue ? 8 : 0
        height: 20
        from: control.from
        to: control.to
        stepSize: control.step
        snapMode: control.step > 0 ? T.Slider.SnapAlways : T.Slider.NoSnap
        value: control.value
        hoverEnabled: true
        focusPolicy: Qt.TabFocus
        Accessible.name: control.label
        onMoved: control.moved(value)
        Keys.onDeletePressed: control.reset()

        background: Item {
            Rectangle {
                y: 8
                width: parent.width
                height: 4
                radius: 2
                color: Theme.pressedFill
            }
            // From zero where the range has it inside, else from its start.
            Rectangle {
                readonly property real origin: slider.zeroPosition > 0 ? 8 + slider.zeroPosition * (parent.width - 16) : 0
                readonly property real end: 8 + slider.visualPosition * (parent.width - 16)
                x: Math.min(origin, end)
                y: 8
                width: Math.abs(end - origin)
                height: 4
                radius: 2
                color: Theme.accent
            }
            // Where the default lies.
            Rectangle {
                x: 8 + slider.defaultPosition * (parent.width - 16) - 1
                y: 15
                width: 2
                height: 4
                radius: 1
                color: Theme.tertiaryText
                opacity: slider.hovered || slider.pressed ? 0.9 : 0
                Behavior on opacity { NumberAnimation { duration: Theme.shortMotion } }
            }
        }
        handle: Rectangle {
            x: slider.visualPosition * (slider.width - width)
            y: 2
            width: 16
            height: 16
            radius: 8
            color: slider.pressed ? Qt.darker(Theme.knob, 1.06) : Theme.knob
            border.width: 1
            border.color: slider.hovered || slider.pressed ? Theme.accent : Theme.dark ? "#1a1b1d" : "#c0c3cb"
            FocusRing { radius: 11; shown: slider.visualFocus }
        }
        TapHandler {
            // After the slider has had the same release, or it would move the value once more.
            onDoubleTapped: resetSoon.start()
        }
        Timer {
            id: resetSoon
            interval: 0
            onTriggered: control.reset()
        }
    }
    Text {
        id: number
        objectName: control.objectName + ".text"
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        visible: control.showValue
        width: !control.showValue ? 0 : control.unit !== "" ? 36 : 28
        text: control.valueText
        color: Theme.tertiaryText
        font.family: Theme.monospacedFamily
        font.pixelSize: 11
        horizontalAlignment: Text.AlignRight
    }
}
