// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Settings

/// The root of the settings window: the two entries of the sidebar, and beside them the pane of the one that is
/// chosen.
ThemedView {
    id: root

    required property SettingsSession session

    implicitWidth: 748
    implicitHeight: 648
    focus: true
    // What is being recorded, or open, takes the key before it comes here. The window goes when the key is let
    // go: its repeats would fall on whatever is beneath.
    Keys.onEscapePressed: event => {
        leaving = leaving || !event.isAutoRepeat;
        settled.stop();
    }
    Keys.onReleased: event => {
        if (!leaving || event.key !== Qt.Key_Escape || event.isAutoRepeat)
            return;
        if (settled.interval > 0)
            settled.restart();
        else
            session.close();
    }
    Timer {
        id: settled
        interval: Theme.keySettling
        onTriggered: root.session.close()
    }
    Window.onActiveChanged: {
        leaving = false;
        settled.stop();
    }
    property bool leaving: false

    Rectangle {
        anchors.fill: parent
        color: Theme.ground
    }
    Item {
        id: detail
        objectName: "detail"
        anchors.fill: parent
        anchors.leftMargin: sidebar.x + sidebar.width

        Loader {
            anchors.fill: parent
            anchors.topMargin: Theme.headerHeight
            sourceComponent: root.session.showsSettings ? settingsPane : aboutPane
        }
    }
    SettingsSidebar {
        id: sidebar
        width: 196
        height: parent.height
        x: root.session.sidebarVisible ? 0 : -width
        visible: x > -width
        session: root.session
        Behavior on x {
            enabled: Theme.motion > 0
            NumberAnimation { duration: Theme.motion; easing.type: Easing.OutCubic }
        }
    }
    SettingsHeader {
        width: parent.width
        height: Theme.headerHeight
        session: root.session
        sidebarSpace: sidebar.x + sidebar.width
    }
    Component {
        id: settingsPane
        SettingsContentView { session: root.session }
    }
    Component {
        id: aboutPane
        AboutContentView { session: root.session }
    }
    ResizeMargins { anchors.fill: parent }
    Rectangle {
        anchors.fill: parent
        color: "transparent"
        border.color: Theme.outline
    }
}
