// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
import Framora.Controls

/// A slider's value as text, right-aligned in its box; a click opens it for typing. Return and Tab take what was typed,
/// Escape and garbage leave the value as it is; the up and down keys move it.
Item {
    id: number

    required property string text
    required property real boxWidth
    property string label: ""
    /// The user has typed this.
    signal typed(string text)
    /// The up or down key asks for so many steps.
    signal stepped(int steps)
    /// Typing ended by a key that goes nowhere else: the keys belong to the slider again.
    signal done

    /// What the field began with: the value cut to the digits shown, which is not to be taken for typed.
    property string untouched: ""

    function open(text: string): void {
        editor.active = true;
        const field = editor.item as T.TextField;
        untouched = text === "" ? number.text : "";
        field.text = text !== "" ? text : number.text;
        field.forceActiveFocus(Qt.MouseFocusReason);
        if (text === "")
            field.selectAll();
    }
    function close(take: bool): void {
        if (!editor.active)
            return;
        const text = (editor.item as T.TextField).text;
        editor.active = false;
        if (take && text !== untouched)
            typed(text);
    }

    implicitHeight: 20

    RoundedBox {
        anchors.right: parent.right
        anchors.rightMargin: -4
        width: number.boxWidth + 8
        height: parent.height
        radius: 5
        color: Theme.fill
        opacity: mouse.containsMouse && !editor.active ? 1 : 0
        Behavior on opacity { NumberAnimation { duration: Theme.shortMotion } }
    }
    Text {
        objectName: number.objectName + ".text"
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        width: number.boxWidth
        visible: !editor.active
        text: number.text
        color: Theme.tertiaryText
        font.family: Theme.monospacedFamily
        font.pixelSize: 11
        horizontalAlignment: Text.AlignRight
    }
    MouseArea {
        id: mouse
        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.IBeamCursor
        Accessible.role: Accessible.Button
        Accessible.name: Strings.localized("type.named").arg(number.label)
        Accessible.onPressAction: number.open("")
        onClicked: number.open("")
    }
    Loader {
        id: editor
        active: false
        anchors.right: parent.right
        anchors.rightMargin: -5
        anchors.verticalCenter: parent.verticalCenter
        sourceComponent: T.TextField {
            id: field
            objectName: number.objectName + ".field"
            width: 48
            height: 24
            leftPadding: 4
            rightPadding: 5
            color: Theme.text
            selectionColor: Theme.accent
            selectedTextColor: Theme.accentText
            selectByMouse: true
            maximumLength: 12
            font.family: Theme.monospacedFamily
            font.pixelSize: 11
            horizontalAlignment: TextInput.AlignRight
            verticalAlignment: TextInput.AlignVCenter
            Accessible.name: number.label
            background: RoundedBox {
                radius: 6
                color: Theme.card
                outlineWidth: 2
                outline: Theme.accent
            }
            onAccepted: {
                number.close(true);
                number.done();
            }
            onActiveFocusChanged: if (!activeFocus) number.close(true)
            // The key that opened it may still be down.
            Keys.onReturnPressed: event => event.accepted = event.isAutoRepeat
            Keys.onEnterPressed: event => event.accepted = event.isAutoRepeat
            // Escape belongs to the window otherwise.
            Keys.onShortcutOverride: event => event.accepted = event.key === Qt.Key_Escape
            Keys.onEscapePressed: {
                number.close(false);
                number.done();
            }
            Keys.onUpPressed: event => step(event, 1)
            Keys.onDownPressed: event => step(event, -1)

            /// From what was typed, where something was.
            function step(event: var, steps: int): void {
                event.accepted = !(event.modifiers & (Qt.ControlModifier | Qt.AltModifier | Qt.MetaModifier));
                if (!event.accepted)
                    return;
                if (text !== number.untouched)
                    number.typed(text);
                number.stepped(event.modifiers & Qt.ShiftModifier ? 10 * steps : steps);
                number.untouched = text = number.text;
                selectAll();
            }
        }
    }
}
