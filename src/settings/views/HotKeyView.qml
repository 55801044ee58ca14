// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Settings

/// A shortcut as a row of key caps. A click starts the recording of another one, and so do the
/// keys when they are let go: one that is still down would be recorded.
Pressable {
    id: row

    required property ShortcutRecorder recorder
    readonly property bool isActive: recorder.recording
    readonly property var caps: recorder.caps

    /// From idle to recording.
    property real activity: isActive ? 1 : 0
    Behavior on activity {
        enabled: !Theme.reducedMotion
        // Response 0.3 s, damping fraction 0.7.
        SpringAnimation { spring: 7.02; damping: 0.469; epsilon: 0.002 }
    }
    function mix(from: color, to: color): color {
        const part = Math.max(0, Math.min(1, activity));
        return Qt.rgba(from.r + (to.r - from.r) * part, from.g + (to.g - from.g) * part,
                       from.b + (to.b - from.b) * part, from.a + (to.a - from.a) * part);
    }

    implicitHeight: 72
    padding: 12
    // A click brings the keys here too: the next thing one does is to type.
    focusPolicy: Qt.StrongFocus
    Accessible.name: text
    Accessible.description: isActive && caps.length === 0 ? "Enter a key combination"
                                                          : recorder.words || caps.join(" ")
    // The caps bear the signs of another keyboard.
    help: recorder.words
    helpAbove: true
    onClicked: recorder.start()

    background: Item {
        // Where to click, on a ground that the row's own border does not show on.
        RoundedBox {
            anchors.fill: parent
            anchors.margins: -1
            radius: 13
            color: row.hovered && !row.isActive ? Theme.fill : "transparent"
            outline: row.isActive || Theme.dark ? "transparent" : Theme.outline
            Behavior on color { ColorAnimation { duration: Theme.shortMotion } }
        }
        RoundedBox {
            anchors.fill: parent
            radius: 12
            color: row.mix(Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0),
                           Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0.2))
            outline: row.mix(Qt.rgba(1, 1, 1, 0.1),
                             Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0.5))
        }
        FocusRing { radius: 15; shown: row.visualFocus && !row.isActive }
    }
    contentItem: Item {
        Row {
            anchors.centerIn: parent
            spacing: 8
            Repeater {
                model: row.caps
                delegate: KeyCap {
                    required property string modelData
                    text: modelData
                }
            }
        }
        Text {
            visible: row.caps.length === 0 && row.isActive
            anchors.centerIn: parent
            text: "Enter a key combination"
            color: Theme.secondaryText
            font.family: Theme.fontFamily
            font.pixelSize: 13
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        // No shortcut at all.
        Text {
            visible: row.caps.length === 0 && !row.isActive
            anchors.centerIn: parent
            width: 48
            height: 48
            font.family: Theme.monospacedFamily
            font.pixelSize: 12
        }
    }
}
