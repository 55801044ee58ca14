import QtQuick
import QtQuick.Templates as T
import Framora.Controls

/// A small help text; `HelpArea` says where.
T.ToolTip {
    id: tip

    /// The keys that do the same, shown behind the text.
    property string shortcut: ""

    x: Math.round((parent.width - implicitWidth) / 2)
    margins: 8
    delay: 500
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent | T.Popup.CloseOnReleaseOutsideParent
    leftPadding: 10
    rightPadding: 10
    topPadding: 6
    bottomPadding: 6
    implicitWidth: contentItem.implicitWidth + leftPadding + rightPadding
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding

    contentItem: Row {
        objectName: "help"
        spacing: 8
        Text {
            text: tip.text
            color: Theme.text
            font.family: Theme.fontFamily
            font.pixelSize: 12
        }
        Text {
            visible: text !== ""
            text: tip.shortcut
            color: Theme.tertiaryText
            font.family: Theme.fontFamily
            font.pixelSize: 12
        }
    }
    background: RoundedBox {
        color: Theme.card
        outline: Theme.outline
        radius: 6
        SoftShadow { radius: 6; strength: 0.6 }
    }
}
