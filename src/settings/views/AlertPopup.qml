// qmllint disable unqualified deferred-property-id
import QtQuick
import QtQuick.Templates as T
import Framora.Controls

/// A message over the window, with one button that puts it away.
T.Popup {
    id: alert

    required property bool shown
    required property string title
    required property string message
    signal dismissed

    property Item opener: null ///< Has the keys again afterwards.

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: 340
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    padding: 22
    modal: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape
    visible: shown
    onAboutToShow: opener = parent.Window.activeFocusItem
    onClosed: {
        dismissed();
        opener?.forceActiveFocus(Qt.TabFocusReason);
    }
    onOpened: ok.forceActiveFocus(Qt.TabFocusReason)

    T.Overlay.modal: Rectangle { color: "#70000000" }
    background: RoundedBox {
        radius: Theme.cardRadius + 2
        color: Theme.card
        outline: Theme.outline
    }
    contentItem: Column {
        spacing: 12
        Accessible.role: Accessible.AlertMessage
        Accessible.name: alert.title
        Accessible.description: alert.message

        SymbolIcon {
            anchors.horizontalCenter: parent.horizontalCenter
            symbol: "exclamationmark.triangle.fill"
            size: 34
            color: Theme.dark ? "#e5b454" : "#a86a00"
        }
        Text {
            width: parent.width
            text: alert.title
            color: Theme.text
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            font.family: Theme.fontFamily
            font.pixelSize: 15
            font.weight: Font.DemiBold
        }
        Text {
            width: parent.width
            bottomPadding: 6
            text: alert.message
            color: Theme.secondaryText
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            lineHeight: 1.15
            font.family: Theme.fontFamily
            font.pixelSize: 12
        }
        PushButton {
            id: ok
            objectName: "alert.ok"
            width: parent.width
            primary: true
            text: "OK"
            onClicked: alert.dismissed()
        }
    }
}
