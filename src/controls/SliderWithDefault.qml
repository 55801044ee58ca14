// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
import Framora.Controls

/// A captioned slider that knows its default. A double click, Delete, or the small button that appears when the value
/// is another goes back to it; a click on the number, Return or a digit lets a number be typed.
///
/// The arrow keys move by `step`, or by one of the last digit shown; with Shift, and the page keys, ten-fold.
Item {
    id: control

    property string label: ""
    property bool showLabel: true ///< False where a caption of another kind stands beside it.
    required property double value
    property var range: [0, 1] ///< The lowest and the highest value.
    required property double defaultValue
    property double step: 0 ///< 0 is continuous.
    property bool showValue: true
    property string unit: ""
    property int decimals: 0
    property bool resettable: true
    /// Shows the reset button at the default too, as one that has nothing to do.
    property bool resetAlwaysShows: false
    /// The user wants another value; many in a row while the slider is held.
    signal moved(double value)
    /// Around everything that one hold of the slider moves.
    signal editStarted
    signal editFinished

    readonly property double from: range[0]
    readonly property double to: range[1]
    readonly property string valueText: SliderValueText.text(value, decimals, unit)
    readonly property bool isDefault: value === defaultValue

    function reset(): void {
        if (resettable)
            moved(defaultValue);
    }
    function moveTo(wanted: double): void {
        if (wanted !== value)
            moved(wanted);
    }
    function stepBy(steps: real): void {
        moveTo(SliderValueText.stepped(value, steps, from, to, step, decimals, unit));
    }
    /// Opens the number for typing; what is given stands there instead of the value.
    function startTyping(text: string): void {
        if (showValue)
            number.open(text);
    }

    implicitHeight: 20
    implicitWidth: 240

    Label {
        id: caption
        anchors.verticalCenter: parent.verticalCenter
        opacity: control.enabled ? 1 : 0.4
        visible: control.showLabel
        width: control.label !== "" && visible ? Theme.captionWidth : 0
        text: control.label
    }
    T.Slider {
        id: slider

        readonly property real defaultPosition: (control.defaultValue - from) / (to - from)
        readonly property real zeroPosition: from < 0 && to > 0 ? -from / (to - from) : 0
        // What screen readers are told of the range.
        readonly property real minimumValue: from
        readonly property real maximumValue: to
        readonly property real bound: SliderValueText.fit(control.value, from, to, 0)

        objectName: control.objectName + ".slider"
        anchors.left: caption.right
        anchors.right: reset.left
        anchors.rightMargin: control.resettable ? 2 : 8
        height: 20
        from: control.from
        to: control.to
        stepSize: control.step > 0 ? control.step : Math.pow(10, -control.decimals)
        snapMode: T.Slider.NoSnap
        value: bound
        hoverEnabled: true
        focusPolicy: Qt.TabFocus
        Accessible.role: Accessible.Slider
        Accessible.name: control.label
        Accessible.description: control.enabled ? control.valueText : Strings.localized("unavailable")
        // What a screen reader sets.
        onValueChanged: {
            if (enabled && Math.abs(value - bound) > 1e-9)
                control.moveTo(SliderValueText.fit(value, from, to, control.step));
        }
        // While the pointer holds the handle, the keys are the hold's: undo would pull the value from under it.
        Keys.onShortcutOverride: event => event.accepted = hold.pressed
        Keys.onPressed: event => {
            if (hold.pressed) {
                event.accepted = true;
                if (event.key === Qt.Key_Escape)
                    hold.takeBack();
                return;
            }
            event.accepted = keyPressed(event);
            // Whoever goes on with the keyboard sees where it is.
            if (event.accepted)
                focusReason = Qt.TabFocusReason;
        }
        function keyPressed(event: var): bool {
            const many = event.modifiers & Qt.ShiftModifier ? 10 : 1;
            if (event.modifiers & (Qt.ControlModifier | Qt.AltModifier | Qt.MetaModifier))
                return false;
            switch (event.key) {
            case Qt.Key_Left:
            case Qt.Key_Down:
                control.stepBy(-many);
                return true;
            case Qt.Key_Right:
            case Qt.Key_Up:
                control.stepBy(many);
                return true;
            case Qt.Key_PageDown:
                control.stepBy(-10);
                return true;
            case Qt.Key_PageUp:
                control.stepBy(10);
                return true;
            case Qt.Key_Home:
                control.moveTo(from);
                return true;
            case Qt.Key_End:
                control.moveTo(to);
                return true;
            case Qt.Key_Delete:
            case Qt.Key_Backspace:
                control.reset();
                return true;
            case Qt.Key_Return:
            case Qt.Key_Enter:
            case Qt.Key_F2:
                if (!event.isAutoRepeat)
                    control.startTyping("");
                return control.showValue;
            }
            if (!control.showValue || !/^[-0-9.,]$/.test(event.text))
                return false;
            control.startTyping(event.text);
            return true;
        }

        background: Item {
            RoundedBox {
                y: 8
                width: parent.width
                height: 4
                radius: 2
                color: control.enabled ? Theme.pressedFill : Theme.fill
            }
            // From zero where the range has it inside, else from its start.
            RoundedBox {
                readonly property real origin: slider.zeroPosition > 0 ? 8 + slider.zeroPosition * (parent.width - 16) : 0
                readonly property real end: 8 + slider.visualPosition * (parent.width - 16)
                x: Math.min(origin, end)
                y: 8
                width: Math.abs(end - origin)
                height: 4
                radius: 2
                // No stub beside a handle that covers it.
                visible: slider.zeroPosition === 0 || width > 10
                color: control.enabled ? Theme.accent : Theme.outline
            }
            // Where the default lies, unless the handle stands there.
            RoundedBox {
                visible: Math.abs(slider.defaultPosition - slider.visualPosition) * (parent.width - 16) > 9
                x: 8 + slider.defaultPosition * (parent.width - 16) - 1
                y: 15
                width: 2
                height: 4
                radius: 1
                color: Theme.tertiaryText
                opacity: control.resettable && (hold.containsMouse || hold.pressed) ? 0.9 : 0
                Behavior on opacity { NumberAnimation { duration: Theme.shortMotion } }
            }
        }
        handle: RoundedBox {
            x: slider.visualPosition * (slider.width - width)
            y: 2
            width: 16
            height: 16
            radius: 8
            color: !control.enabled ? Theme.disabledKnob : hold.pressed ? Qt.darker(Theme.knob, 1.06) : Theme.knob
            outlineWidth: 1
            outline: hold.containsMouse || hold.pressed ? Theme.accent : Theme.knobOutline
            FocusRing { radius: 11; shown: slider.visualFocus }
        }
        SliderHold {
            id: hold
            anchors.fill: parent
            slider: slider
            value: control.value
            step: control.step
            onMoved: value => control.moveTo(value)
            onEditStarted: control.editStarted()
            onEditFinished: control.editFinished()
            onDoubleClicked: control.reset()
        }
    }
    SliderNumber {
        id: number
        objectName: control.objectName
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        visible: control.showValue
        opacity: control.enabled ? 1 : 0.4
        // Tracks end below each other whether or not there is a unit.
        width: control.showValue ? 36 : 0
        label: control.label
        text: control.valueText
        boxWidth: control.unit !== "" ? 36 : 28
        onTyped: text => {
            const typed = SliderValueText.parse(text, control.unit);
            if (!isNaN(typed))
                control.moveTo(SliderValueText.fit(typed, control.from, control.to, control.step));
        }
        onStepped: steps => control.stepBy(steps)
        onDone: slider.forceActiveFocus(Qt.TabFocusReason)
    }
    IconButton {
        id: reset
        objectName: control.objectName + ".reset"
        anchors.right: number.left
        anchors.verticalCenter: parent.verticalCenter
        width: control.resettable ? 24 : 0
        height: 24
        visible: control.resettable && opacity > 0
        enabled: !control.isDefault
        opacity: control.enabled && !control.isDefault ? 1 : control.resetAlwaysShows ? 0.55 : 0
        symbol: "arrow.counterclockwise"
        symbolSize: 11
        tint: hovered ? Theme.text : Theme.tertiaryText
        text: Strings.localized("reset.named").arg(control.label)
        help: "Reset"
        onClicked: {
            // The button goes, and the keys with it.
            if (visualFocus)
                slider.forceActiveFocus(Qt.TabFocusReason);
            control.reset();
        }
        Behavior on opacity { NumberAnimation { duration: Theme.shortMotion } }
    }
}
