// qmllint disable unqualified
import QtQuick
import Framora.Controls

/// Shows a help text below its parent, or above: to a pointer that has moved there, or while the keys are there. A parent
/// that slides or opens below a pointer at rest, or has just been pressed, keeps quiet.
Loader {
    id: area

    property string help: ""
    property string shortcut: ""
    property bool above: false
    property bool hasKeys: false
    property bool pressed: false

    anchors.fill: parent
    active: help !== "" && (hasKeys || pointer.hovered && pointer.moved)
    onPressedChanged: pointer.restAt(pointer.point.scenePosition)
    sourceComponent: HelpTip {
        parent: area
        y: area.above ? -implicitHeight - 6 : area.height + 6
        text: area.help
        shortcut: area.shortcut
        visible: !area.pressed
    }

    HoverHandler {
        id: pointer

        property point rested
        property bool moved: false

        function restAt(position: point): void {
            rested = position;
            moved = false;
        }
        onHoveredChanged: if (hovered) restAt(Pointer.inside ? Pointer.position : point.scenePosition)
        // A hand that presses slips a little.
        onPointChanged: {
            if (Math.abs(point.scenePosition.x - rested.x) + Math.abs(point.scenePosition.y - rested.y) > 4)
                moved = true;
        }
    }
}
