// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
import Framora.Controls
import Framora.Editor

/// Hands the picture to other programs, in the ways that the desktop has; without any it says so.
Item {
    id: control

    required property EditorSession session
    readonly property bool available: session.canOpenWith || session.canMail
    readonly property string hint: Strings.localized("share.unavailable")

    implicitWidth: button.implicitWidth
    implicitHeight: button.implicitHeight

    component Entry: T.MenuItem {
        id: entry

        implicitWidth: 190
        implicitHeight: 30
        leftPadding: 10
        rightPadding: 10
        hoverEnabled: true
        opacity: enabled ? 1 : 0.4
        Accessible.role: Accessible.MenuItem
        Accessible.name: text

        contentItem: Text {
            text: entry.text
            color: entry.highlighted ? Theme.accentText : Theme.text
            elide: Text.ElideRight
            verticalAlignment: Text.AlignVCenter
            font.family: Theme.fontFamily
            font.pixelSize: 13
        }
        background: RoundedBox {
            radius: 6
            color: entry.highlighted ? Theme.accent : "transparent"
        }
    }

    IconButton {
        id: button
        objectName: "share"
        symbol: "square.and.arrow.up"
        text: "Share"
        help: !control.available ? control.hint : menu.visible ? "" : text
        enabled: control.available
        Accessible.description: control.available ? "" : control.hint
        onClicked: {
            menu.byKeys = visualFocus;
            menu.open();
            menu.currentIndex = menu.byKeys ? 0 : -1;
        }
    }
    T.Menu {
        id: menu

        property bool byKeys: false

        onClosed: if (byKeys) button.forceActiveFocus(Qt.TabFocusReason)
        y: button.height + 4
        implicitWidth: contentItem.implicitWidth + leftPadding + rightPadding
        implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
        padding: 5
        margins: 8
        focus: true
        // The keys of the window are off meanwhile.
        modal: true
        dim: false

        Entry {
            objectName: "share.openWith"
            text: Strings.localized("share.open.with")
            enabled: control.session.canOpenWith
            onTriggered: control.session.openWith()
        }
        Entry {
            objectName: "share.mail"
            text: Strings.localized("share.mail")
            enabled: control.session.canMail
            onTriggered: control.session.sendByMail()
        }

        contentItem: ListView {
            implicitWidth: 190
            implicitHeight: contentHeight
            model: menu.contentModel
            currentIndex: menu.currentIndex
            interactive: false
        }
        background: RoundedBox {
            radius: Theme.cardRadius - 2
            color: Theme.card
            outline: Theme.outline
            SoftShadow { radius: parent.radius }
        }
        enter: Transition {
            NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.shortMotion }
        }
        exit: Transition {
            NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.shortMotion }
        }
    }
}
