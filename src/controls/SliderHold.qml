import QtQuick
import QtQuick.Templates as T
import Framora.Controls

/// The pointer on a slider: a press beside the handle brings it there at once, one on the handle keeps it under the
/// pointer as it is, and the wheel scrolls what the slider stands in. A hold, or a double click, is one edit.
MouseArea {
    id: hold

    required property T.Slider slider
    required property double value
    required property double step ///< 0 is continuous.
    signal moved(double value)
    /// Around everything that is one edit.
    signal editStarted
    signal editFinished

    property real grabOffset: 0
    property real pressedAt: 0
    property bool follows: false
    property bool isHeld: false ///< Until the release, or until Escape takes the hold back.
    property double valueBefore: 0

    function pointTo(x: real): void {
        const part = Math.max(0, Math.min(1, (x - grabOffset - 8) / (width - 16)));
        moved(SliderValueText.fit(slider.from + part * (slider.to - slider.from), slider.from, slider.to, step));
    }
    /// The value is again what it was before the hold.
    function takeBack(): void {
        if (!isHeld)
            return;
        moved(valueBefore);
        letGo();
    }
    function letGo(): void {
        if (isHeld)
            editFinished();
        isHeld = false;
        follows = false;
    }

    hoverEnabled: true
    preventStealing: true
    onPressed: event => {
        slider.forceActiveFocus(Qt.MouseFocusReason);
        // A double click on the track is one edit: what its first click did is no place to go back to.
        if (secondPress.running && Math.abs(event.x - pressedAt) <= 5) {
            secondPress.stop();
        } else {
            secondPress.finish();
            valueBefore = value;
            editStarted();
        }
        isHeld = true;
        const offset = event.x - slider.handle.x - 8;
        follows = Math.abs(offset) > 9;
        grabOffset = follows ? 0 : offset;
        pressedAt = event.x;
        if (follows)
            pointTo(event.x);
    }
    onPositionChanged: event => {
        // A shaking hand is no drag: a double click on the handle must not move it.
        follows = isHeld && (follows || Math.abs(event.x - pressedAt) > 2);
        if (follows)
            pointTo(event.x);
    }
    onReleased: event => {
        if (isHeld && Math.abs(event.x - pressedAt) <= 2) {
            isHeld = false;
            follows = false;
            secondPress.restart();
        } else {
            letGo();
        }
    }
    onCanceled: letGo()
    onDoubleClicked: follows = false

    /// Runs while a click may still become a double click.
    Timer {
        id: secondPress

        readonly property var hints: Qt.styleHints

        function finish(): void {
            if (running)
                hold.editFinished();
            stop();
        }

        interval: hints.mouseDoubleClickInterval
        onTriggered: hold.editFinished()
    }
    Connections {
        target: hold.slider
        function onActiveFocusChanged(): void {
            if (!hold.slider.activeFocus)
                secondPress.finish();
        }
    }
    // Its panel may go before that.
    Component.onDestruction: secondPress.finish()
}
