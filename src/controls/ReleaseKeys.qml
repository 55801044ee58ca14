// qmllint disable unqualified
import QtQuick

/// What the keys do to a button, for its `Keys.forwardTo`: Return, Enter and Space strike it once, when they are let go. One
/// that opens or ends something would hand the repeats of a key still down to whatever comes next.
Item {
    id: keys

    required property Item button
    /// The key that was pressed here and is still down; 0 without one.
    property int heldKey: 0
    signal struck

    function isMine(event: var): bool {
        return event.key === Qt.Key_Return || event.key === Qt.Key_Enter || event.key === Qt.Key_Space;
    }
    function strike(): void {
        heldKey = 0;
        struck();
    }

    Keys.onPressed: event => {
        event.accepted = isMine(event);
        if (event.key === heldKey)
            settled.stop();
        else if (event.accepted && !event.isAutoRepeat)
            heldKey = event.key;
    }
    Keys.onReleased: event => {
        event.accepted = isMine(event);
        if (event.isAutoRepeat || !heldKey || event.key !== heldKey)
            return;
        if (settled.interval > 0)
            settled.restart();
        else
            strike();
    }
    Timer {
        id: settled
        interval: Theme.keySettling
        onTriggered: keys.strike()
    }
    Connections {
        target: keys.button
        function onActiveFocusChanged(): void {
            keys.heldKey = 0;
            settled.stop();
        }
    }
}
