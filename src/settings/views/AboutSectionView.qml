import QtQuick
import Framora.Controls
import Framora.Settings

/// Which program this is, and what it is made of, ready to be copied into a report.
Section {
    id: section

    required property AboutInformation about

    title: Strings.localized("about")

    Column {
        width: parent.width
        topPadding: 10
        bottomPadding: 6
        spacing: 8

        SymbolIcon {
            anchors.horizontalCenter: parent.horizontalCenter
            symbol: "camera.viewfinder"
            size: 64
            color: Theme.accent
        }
        Text {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: section.about.programName
            color: Theme.text
            font.family: Theme.fontFamily
            font.pixelSize: 22
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
    }
    RowSeparator {}
    SettingRow {
        title: Strings.localized("version")
        symbol: "info.circle"
        Text {
            objectName: "version"
            text: section.about.version
            color: Theme.secondaryText
            font.family: Theme.fontFamily
            font.pixelSize: 13
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
    RowSeparator {}
    SettingRow {
        title: Strings.localized("licence")
        symbol: "doc.text"
        Text {
            objectName: "licence"
            text: section.about.licence
            color: Theme.secondaryText
            font.family: Theme.fontFamily
            font.pixelSize: 13
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
    RowSeparator {}
    SettingRow {
        title: Strings.localized("report.details")
        description: Strings.localized("report.details.description")
        symbol: "doc.on.doc"
        PushButton {
            objectName: "copyDetails"
            text: Strings.localized("copy")
            onClicked: section.about.copy()
        }
    }
    RoundedBox {
        width: parent.width
        height: details.implicitHeight + 24
        radius: Theme.radius
        color: Theme.fill

        TextEdit {
            id: details
            objectName: "details"
            x: 12
            y: 12
            width: parent.width - 24
            text: section.about.details
            readOnly: true
            selectByMouse: true
            activeFocusOnTab: true
            color: Theme.text
            selectionColor: Theme.accent
            selectedTextColor: Theme.accentText
            wrapMode: TextEdit.Wrap
            font.family: Theme.monospacedFamily
            font.pixelSize: 12
            Accessible.role: Accessible.EditableText
            Accessible.readOnly: true
            Accessible.name: Strings.localized("report.details")
        }
    }
}
