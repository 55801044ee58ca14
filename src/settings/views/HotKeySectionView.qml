import QtQuick
import Framora.Controls
import Framora.Settings

/// The shortcut of the area capture.
RecorderSection {
    required property SettingsForm form

    objectName: "hotKey"
    title: Strings.localized("Global Shortcut")
    hint: Strings.localized("Click the area above then type the desired key combination")
    recorder: form.hotKey
    conflict: form.hotKeyConflict
}
