// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Settings

/// The sound of a capture.
Section {
    id: section

    required property SettingsForm form

    title: Strings.localized("sound")

    ToggleRow {
        objectName: "soundEnabled"
        title: Strings.localized("sound effects")
        description: Strings.localized("activate sound effects when capturing")
        symbol: "speaker.wave.2.fill"
        checked: section.form.soundEnabled
        onToggled: checked => section.form.soundEnabled = checked
    }
    RowSeparator {}
    SettingRow {
        title: Strings.localized("capture sound")
        description: Strings.localized("choose a sound that will be played each time a capture is made")
        symbol: "music.note"

        Column {
            spacing: 10

            MenuPicker {
                objectName: "captureSound"
                width: Math.max(152, test.implicitWidth)
                text: Strings.localized("capture sound")
                options: section.form.sounds
                value: section.form.selectedSound
                onChosen: value => section.form.selectedSound = value
            }
            PushButton {
                id: test
                objectName: "testSound"
                width: parent.width
                symbol: "play.circle.fill"
                text: Strings.localized("test the sound")
                onClicked: section.form.testSound()
            }
        }
    }
    RowSeparator {}
    Item {
        width: parent.width
        height: 24

        SymbolIcon {
            id: loudspeaker
            anchors.verticalCenter: parent.verticalCenter
            symbol: "speaker.wave.1.fill"
            size: 18
            color: Theme.secondaryText
        }
        Text {
            id: caption
            x: 30
            width: Math.min(implicitWidth, 120)
            anchors.verticalCenter: parent.verticalCenter
            text: Strings.localized("volume")
            color: Theme.text
            elide: Text.ElideRight
            font.family: Theme.fontFamily
            font.pixelSize: 13
            font.weight: Font.Medium
        }
        SliderWithDefault {
            objectName: "volume"
            anchors.left: caption.right
            anchors.leftMargin: 24
            anchors.right: percent.left
            anchors.rightMargin: 12
            anchors.verticalCenter: parent.verticalCenter
            label: caption.text
            showLabel: false
            showValue: false
            resettable: false
            decimals: 2
            range: [0, 1]
            defaultValue: 0.5
            value: section.form.volume
            onMoved: value => section.form.volume = value
        }
        Text {
            id: percent
            objectName: "volume.percent"
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            width: 44
            text: section.form.volumeText
            color: Theme.secondaryText
            horizontalAlignment: Text.AlignRight
            font.family: Theme.monospacedFamily
            font.pixelSize: 12
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
}
