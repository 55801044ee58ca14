import QtQuick
import Framora.Controls
import Framora.Settings

/// A shortcut, what to do with it, and what there is to say about it.
Section {
    id: section

    required property ShortcutRecorder recorder
    required property string hint
    required property string conflict
    required property ShortcutBinding binding

    HotKeyView {
        objectName: section.objectName + ".row"
        width: parent.width
        recorder: section.recorder
        text: section.title
    }
    Column {
        width: parent.width
        spacing: 6

        Text {
            objectName: section.objectName + ".caption"
            visible: section.recorder.modifierOnly
            width: parent.width
            text: "Modifier-only shortcut"
            color: Theme.secondaryText
            wrapMode: Text.Wrap
            font.family: Theme.fontFamily
            font.pixelSize: 11
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        Row {
            visible: section.conflict !== "" && !section.recorder.recording
            width: parent.width
            spacing: 6
            SymbolIcon {
                id: warning
                symbol: "exclamationmark.triangle.fill"
                size: 14
                color: Theme.secondaryText
            }
            Text {
                objectName: section.objectName + ".conflict"
                width: parent.width - warning.width - 6
                text: section.conflict
                color: Theme.secondaryText
                wrapMode: Text.Wrap
                font.family: Theme.fontFamily
                font.pixelSize: 11
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
        }
        Text {
            width: parent.width
            text: section.hint
            color: Theme.tertiaryText
            wrapMode: Text.Wrap
            font.family: Theme.fontFamily
            font.pixelSize: 12
        }
    }
    BindingNotice {
        objectName: section.objectName + ".notice"
        width: parent.width
        binding: section.binding
    }
    BindingGuideView {
        objectName: section.objectName + ".guide"
        width: parent.width
        binding: section.binding
    }
}
