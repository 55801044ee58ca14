import QtQuick
import Framora.Controls
import Framora.Settings

/// The two permissions that the program needs, and the way to give them.
Section {
    id: section

    required property PermissionsMonitor monitor

    title: Strings.localized("permissions")
    Component.onCompleted: monitor.appear()
    Component.onDestruction: monitor.disappear()

    PermissionRow {
        objectName: "accessibility"
        title: Strings.localized("accessibility")
        description: section.monitor.accessibilityDescription
        grantable: section.monitor.canGrantAccessibility
        openLabel: Strings.localized("open.accessibility.settings")
        symbol: "keyboard"
        granted: section.monitor.hasAccessibility
        onAllowed: section.monitor.grantAccessibility()
    }
    RowSeparator {}
    PermissionRow {
        objectName: "screenRecording"
        title: Strings.localized("screen.recording")
        description: section.monitor.screenRecordingDescription
        openLabel: Strings.localized("open.screen.recording.settings")
        symbol: "record.circle"
        granted: section.monitor.hasScreenRecording
        onAllowed: section.monitor.grantScreenRecording()
    }
    CopyLine {
        objectName: "screenRecording.forget"
        visible: !section.monitor.hasScreenRecording && text !== ""
        width: parent.width
        text: section.monitor.commandToForgetDenial
        onCopied: section.monitor.copyCommandToForgetDenial()
    }
}
