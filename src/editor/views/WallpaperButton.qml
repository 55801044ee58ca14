import QtQuick
import Framora.Controls
import Framora.Editor

/// One background image to choose. Tab reaches the grid's current one; its ring shows whenever it has the keys.
ChoiceButton {
    id: control

    required property int index
    required property bool chosen
    required property bool stop
    required property var thumbnail

    focusPolicy: stop ? Qt.TabFocus : Qt.NoFocus
    checked: chosen
    Accessible.name: text
    // The grid's own steps to a neighbour count as the keyboard's.
    onActiveFocusChanged: if (activeFocus) focusReason = Qt.TabFocusReason

    background: Item {
        Thumbnail {
            anchors.fill: parent
            image: control.thumbnail // qmllint disable type
            radius: 9
            outline: Theme.swatchOutline
        }
        SwatchRing { anchors.fill: parent; control: control; chosen: control.chosen }
    }
}
