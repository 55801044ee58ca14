import QtQuick
import Framora.Controls
import Framora.Settings

/// What the desktop made of a shortcut where that is not what was asked for, and what can be done about it.
Item {
    id: view

    required property ShortcutBinding binding

    visible: binding.notice !== ""
    implicitHeight: row.implicitHeight

    SettingRow {
        id: row
        title: view.binding.notice
        symbol: "keyboard"

        PushButton {
            objectName: view.objectName + ".remedy"
            visible: view.binding.remedy !== ""
            width: visible ? implicitWidth : 0
            text: view.binding.remedy
            onClicked: view.binding.mend()
        }
    }
}
