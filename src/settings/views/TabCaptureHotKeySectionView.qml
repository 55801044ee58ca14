import QtQuick
import Framora.Settings

/// The shortcut of the window capture.
RecorderSection {
    required property SettingsForm form

    objectName: "tabCaptureHotKey"
    title: "Window Capture"
    hint: "Configure the shortcut to capture the active window"
    recorder: form.tabCaptureHotKey
    conflict: form.tabCaptureHotKeyConflict
    binding: form.tabCaptureHotKeyBinding
}
