import QtQuick
import Framora.Settings

/// The pane "About".
SettingsPane {
    id: view

    required property SettingsSession session

    AboutSectionView {
        width: parent.width
        about: view.session.about
    }
}
