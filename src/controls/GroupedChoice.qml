import QtQuick
import Framora.Controls

/// A member of a ChoiceGroup.
ChoiceButton {
    id: control

    required property int index
    required property ChoiceGroup group
    readonly property bool chosen: group.current === index

    focusPolicy: group.stop === index ? Qt.TabFocus : Qt.NoFocus
    checked: chosen
    onActiveFocusChanged: if (activeFocus) group.entered(index)
}
