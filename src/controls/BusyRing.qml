// qmllint disable unqualified
import QtQuick
import Framora.Controls

/// A quiet sign that something goes on. It stands still where the desktop asks for reduced motion.
Item {
    id: ring

    property bool running: true

    implicitWidth: 16
    implicitHeight: 16
    Accessible.role: Accessible.Animation
    Accessible.ignored: true

    Item {
        anchors.fill: parent
        Repeater {
            model: 8
            delegate: RoundedBox {
                required property int index
                x: 8 + 6 * Math.cos(index * Math.PI / 4) - 1.5
                y: 8 + 6 * Math.sin(index * Math.PI / 4) - 1.5
                width: 3
                height: 3
                radius: 1.5
                color: Theme.tertiaryText
                opacity: 0.2 + 0.8 * index / 7
            }
        }
        RotationAnimator on rotation {
            running: ring.running && ring.visible && !Theme.reducedMotion
            from: 0
            to: 360
            duration: 1200
            loops: Animation.Infinite
        }
    }
}
