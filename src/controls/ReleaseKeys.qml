// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T

/// What the keys do to a button, for its `Keys.forwardTo`: Return and Enter click it as Space does, once and when they
/// are let go. A click that opens or ends something would hand the repeats of a key still down to whatever comes next.
Item {
    id: keys

    required property T.AbstractButton button
    property bool returnIsDown: false

    function isReturn(event: var): bool {
        return event.key === Qt.Key_Return || event.key === Qt.Key_Enter;
    }
    // Each release among a held key's repeats would be a click of the button's own.
    function isRepeatedSpace(event: var): bool {
        return event.key === Qt.Key_Space && event.isAutoRepeat;
    }

    Keys.onPressed: event => {
        if (isReturn(event) && !event.isAutoRepeat)
            returnIsDown = true;
        event.accepted = isReturn(event) || isRepeatedSpace(event);
    }
    Keys.onReleased: event => {
        const clicks = isReturn(event) && returnIsDown && !event.isAutoRepeat;
        event.accepted = isReturn(event) || isRepeatedSpace(event);
        if (!clicks)
            return;
        returnIsDown = false;
        button.clicked();
    }
    Connections {
        target: keys.button
        function onActiveFocusChanged(): void { keys.returnIsDown = false; }
    }
}
