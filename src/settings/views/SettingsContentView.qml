// qmllint disable unqualified
import QtQuick
import Framora.Settings

/// The pane "Settings": its sections over a copy of the settings of their own.
SettingsPane {
    id: view

    required property SettingsSession session
    readonly property SettingsForm form: session.makeForm(view)

    Loader {
        width: parent.width
        active: view.form.permissions !== null
        visible: active
        sourceComponent: PermissionsSectionView { monitor: view.form.permissions }
    }
    HotKeySectionView {
        width: parent.width
        form: view.form
    }
    TabCaptureHotKeySectionView {
        width: parent.width
        form: view.form
    }
    AppearanceSectionView {
        width: parent.width
        form: view.form
    }
    GeneralSectionView {
        width: parent.width
        form: view.form
    }
    SoundSectionView {
        width: parent.width
        form: view.form
    }
    AlertPopup {
        shown: view.form.showAccessibilityAlert
        title: "Permissions Required"
        message: "Framora needs accessibility permissions to function. Please allow the app in System Settings > Privacy & Security > Accessibility."
        onDismissed: view.form.showAccessibilityAlert = false
    }
}
