import QtQuick
import Framora.Settings

/// The shortcut of the area capture.
RecorderSection {
    required property SettingsForm form

    objectName: "hotKey"
    title: "Global Shortcut"
    hint: "Click the area above then type the desired key combination"
    recorder: form.hotKey
    conflict: form.hotKeyConflict
    binding: form.hotKeyBinding
}
