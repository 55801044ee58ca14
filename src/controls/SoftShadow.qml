// qmllint disable unqualified
import QtQuick

/// The shadow of a panel that floats above the rest: rims that fade outwards, since a software scene has no blur.
Item {
    id: shadow

    property real radius: 0
    property real strength: 1

    anchors.fill: parent
    z: -1

    Repeater {
        model: 10
        delegate: Rectangle {
            required property int index
            anchors.fill: parent
            anchors.margins: -index * 1.6
            anchors.topMargin: 4 - index * 1.6
            anchors.bottomMargin: -4 - index * 1.6
            radius: shadow.radius + index * 1.6
            // By the colour, not by opacity: a software scene rounds that one way at the sides and another in the
            // corners, and ten rims make a step of it.
            color: Qt.rgba(0, 0, 0, 0.022 * shadow.strength * (1 - index / 12))
        }
    }
}
