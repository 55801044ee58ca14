import QtQuick
import Framora.Controls
import Framora.Settings

/// One permission: given, or what is missing without it and a button to give it.
Item {
    id: row

    required property string title
    required property string description
    required property string openLabel
    required property string symbol
    required property bool granted
    /// Whether a button can do anything about it.
    property bool grantable: true
    signal allowed

    width: parent.width
    implicitHeight: content.implicitHeight

    Accessible.role: Accessible.Grouping
    Accessible.name: title
    Accessible.description: granted ? Strings.localized("permission.granted") : description

    Column {
        id: content
        width: parent.width
        spacing: 10

        SettingRow {
            title: row.title
            symbol: row.symbol

            // Of the two only the one that shows takes room.
            Row {
                SymbolIcon {
                    objectName: row.objectName + ".granted"
                    visible: row.granted
                    symbol: "checkmark.circle.fill"
                    size: 20
                    color: Theme.dark ? "#4cc38a" : "#2a8f5c"
                    Accessible.role: Accessible.StaticText
                    Accessible.name: Strings.localized("permission.granted")
                }
                PushButton {
                    objectName: row.objectName + ".allow"
                    visible: !row.granted && row.grantable
                    width: visible ? implicitWidth : 0
                    text: Strings.localized("allow")
                    help: row.openLabel
                    primary: true
                    Accessible.description: row.openLabel
                    onClicked: row.allowed()
                }
            }
        }
        Row {
            visible: !row.granted
            width: parent.width
            spacing: 12
            SymbolIcon {
                id: warning
                symbol: "exclamationmark.triangle.fill"
                size: 18
                color: Theme.dark ? "#e5b454" : "#a86a00"
            }
            Text {
                width: parent.width - warning.width - 12
                text: row.description
                color: Theme.secondaryText
                wrapMode: Text.Wrap
                lineHeight: 1.1
                font.family: Theme.fontFamily
                font.pixelSize: 12
            }
        }
    }
}
