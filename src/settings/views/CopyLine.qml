// qmllint disable unqualified
import QtQuick
import Framora.Controls

/// A line that is meant to be put somewhere else, with a button that copies it and says so.
Item {
    id: line

    required property string text
    property string label: ""
    property real labelWidth: 0
    property bool copyable: true
    property bool justCopied: false
    signal copied
    signal labelMeasured(real width)

    /// In a narrow window the label stands above the line, and the button is a symbol.
    readonly property bool isNarrow: width < 340

    implicitHeight: Math.max(32, content.y + content.implicitHeight)

    Text {
        id: caption
        visible: line.label !== ""
        y: line.isNarrow ? 0 : (line.height - height) / 2
        text: line.label
        color: Theme.secondaryText
        font.family: Theme.fontFamily
        font.pixelSize: 12
        onImplicitWidthChanged: line.labelMeasured(implicitWidth)
        Component.onCompleted: line.labelMeasured(implicitWidth)
    }
    TextEdit {
        id: content
        x: line.labelWidth > 0 && !line.isNarrow ? line.labelWidth + 14 : 0
        y: line.isNarrow ? (caption.visible ? caption.height + 2 : 0) : Math.max(0, (32 - contentHeight) / 2)
        width: (button.visible ? button.x - 12 : line.width) - x
        text: line.text
        readOnly: true
        selectByMouse: true
        activeFocusOnTab: false
        color: Theme.text
        selectionColor: Theme.accent
        selectedTextColor: Theme.accentText
        wrapMode: TextEdit.Wrap
        font.family: Theme.monospacedFamily
        font.pixelSize: 12
        // No ligatures: two hyphens are two hyphens to who types the line.
        font.preferShaping: false
        Accessible.role: Accessible.EditableText
        Accessible.readOnly: true
        Accessible.name: line.label !== "" ? line.label : text
    }
    PushButton {
        id: button
        objectName: line.objectName + ".copy"
        visible: line.copyable
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        // As wide for either word: nothing moves when it changes.
        width: compact ? 40 : Math.ceil(Math.max(copyText.advanceWidth, copiedText.advanceWidth)) + 50
        compact: line.isNarrow
        help: compact ? text : ""
        symbol: line.justCopied ? "checkmark" : "doc.on.doc"
        text: line.justCopied ? copiedText.text : copyText.text
        accessibleName: line.justCopied ? copiedText.text : copyText.text + ": " + line.text
        // On the dark ground the raised look has no edge.
        raised: !Theme.dark
        onClicked: {
            line.copied();
            line.justCopied = true;
            back.restart();
        }
    }
    TextMetrics {
        id: copyText
        text: Strings.localized("copy")
        font.family: Theme.fontFamily
        font.pixelSize: 13
        font.weight: Font.Medium
    }
    TextMetrics {
        id: copiedText
        text: Strings.localized("copied.short")
        font: copyText.font
    }
    Timer {
        id: back
        interval: 1600
        onTriggered: line.justCopied = false
    }
}
