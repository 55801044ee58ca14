import QtQuick

/// Many choices that Tab reaches as one: the arrow keys, Home and End go among them, and each chooses itself when it
/// is pressed. A member's `focusPolicy` is Qt.TabFocus while its number is `stop`, and it reports `entered(number)`
/// when it has the keys.
FocusScope {
    id: group

    required property int count
    property int current: -1 ///< The chosen one.
    required property var itemAt ///< The member of a number.
    readonly property int stop: lastEntered >= 0 && lastEntered < count ? lastEntered : Math.max(0, current)
    property int lastEntered: -1

    function entered(index: int): void {
        lastEntered = index;
    }
    /// The nearest member in a direction; those in line come before those aside.
    function neighbour(dx: int, dy: int): int {
        const rect = index => {
            const item = itemAt.call(null, index);
            const at = item.mapToItem(group, 0, 0);
            return { x: at.x + item.width / 2, y: at.y + item.height / 2 };
        };
        const here = rect(stop);
        let best = -1;
        let bestDistance = 0;
        for (let i = 0; i < count; ++i) {
            const there = rect(i);
            const along = dx ? (there.x - here.x) * dx : (there.y - here.y) * dy;
            const aside = Math.abs(dx ? there.y - here.y : there.x - here.x);
            const distance = along + 4 * aside;
            if (along > 1 && (best < 0 || distance < bestDistance)) {
                best = i;
                bestDistance = distance;
            }
        }
        return best;
    }
    function go(index: int): void {
        if (index >= 0 && index < count)
            itemAt.call(null, index).forceActiveFocus(Qt.TabFocusReason);
    }

    onActiveFocusChanged: if (!activeFocus) lastEntered = -1
    Keys.onPressed: event => {
        event.accepted = true;
        switch (event.key) {
        case Qt.Key_Left:
            go(neighbour(-1, 0));
            break;
        case Qt.Key_Right:
            go(neighbour(1, 0));
            break;
        case Qt.Key_Up:
            go(neighbour(0, -1));
            break;
        case Qt.Key_Down:
            go(neighbour(0, 1));
            break;
        case Qt.Key_Home:
            go(0);
            break;
        case Qt.Key_End:
            go(count - 1);
            break;
        default:
            event.accepted = false;
        }
    }
}
