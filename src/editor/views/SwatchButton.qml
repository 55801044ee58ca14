// qmllint disable deferred-property-id
import QtQuick
import QtQuick.Templates as T
import Framora.Controls
import Framora.Editor

/// A preset's colours to choose from, a member of a group; a ring marks the chosen one.
T.RadioButton {
    id: control

    required property int index
    required property ChoiceGroup group
    required property var colors
    property double angle: 135
    property string caption: ""
    readonly property bool chosen: group.current === index

    implicitWidth: 48
    implicitHeight: 44 + (caption !== "" ? 20 : 0)
    hoverEnabled: true
    focusPolicy: group.stop === index ? Qt.TabFocus : Qt.NoFocus
    checked: chosen
    Accessible.onToggleAction: control.clicked()
    Accessible.onPressAction: control.clicked()
    Accessible.name: caption !== "" ? caption : text
    onActiveFocusChanged: if (activeFocus) group.entered(index)
    Keys.onReturnPressed: event => { if (!event.isAutoRepeat) control.clicked(); }
    Keys.onEnterPressed: event => { if (!event.isAutoRepeat) control.clicked(); }

    contentItem: Item {
        Text {
            visible: control.caption !== ""
            anchors.bottom: parent.bottom
            width: parent.width
            text: control.caption
            color: control.chosen || control.hovered ? Theme.text : Theme.secondaryText
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignHCenter
            font.family: Theme.fontFamily
            font.pixelSize: 11
            font.weight: control.chosen ? Font.DemiBold : Font.Normal
        }
    }
    background: Item {
        GradientSwatch {
            id: swatch
            width: parent.width
            height: 44
            radius: 9
            colors: control.colors
            angle: control.angle
            outline: Theme.swatchOutline
        }
        SwatchRing { anchors.fill: swatch; control: control; chosen: control.chosen }
    }
}
