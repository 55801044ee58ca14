import QtQuick
import QtQuick.Templates as T
import Framora.Controls
import Framora.Editor

/// One background image to choose. Tab reaches the grid's current one; its ring shows whenever it has the keys.
T.RadioButton {
    id: control

    required property int index
    required property bool chosen
    required property bool stop
    required property var thumbnail

    hoverEnabled: true
    focusPolicy: stop ? Qt.TabFocus : Qt.NoFocus
    checked: chosen
    Accessible.onToggleAction: control.clicked()
    Accessible.onPressAction: control.clicked()
    Accessible.name: text
    Keys.onReturnPressed: event => { if (!event.isAutoRepeat) control.clicked(); }
    Keys.onEnterPressed: event => { if (!event.isAutoRepeat) control.clicked(); }
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
