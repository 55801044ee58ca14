import QtQuick
import QtQuick.Templates as T
import Framora.Controls

/// One field of the colour panel to type in, with its caption below. Return and Tab take what was typed, Escape gives
/// the shown text back; the up and down keys ask for a step.
Item {
    id: number

    required property string caption
    required property string shown
    required property string accessibleName
    property int maximumLength: 3
    signal typed(string text)
    signal stepped(int steps)

    implicitHeight: 46

    T.TextField {
        id: field
        objectName: number.objectName
        width: parent.width
        height: 28
        leftPadding: 4
        rightPadding: 4
        verticalAlignment: TextInput.AlignVCenter
        horizontalAlignment: TextInput.AlignHCenter
        text: number.shown
        color: Theme.text
        selectionColor: Theme.accent
        selectedTextColor: Theme.accentText
        selectByMouse: true
        maximumLength: number.maximumLength
        hoverEnabled: true
        font.family: Theme.monospacedFamily
        font.pixelSize: 12
        Accessible.name: number.accessibleName
        onActiveFocusChanged: {
            if (activeFocus)
                selectAll();
            else
                take();
        }
        onAccepted: {
            take();
            selectAll();
        }
        Keys.onShortcutOverride: event => event.accepted = event.key === Qt.Key_Escape && field.text !== number.shown
        Keys.onEscapePressed: event => {
            event.accepted = field.text !== number.shown;
            restore();
            selectAll();
        }
        Keys.onUpPressed: event => step(event, 1)
        Keys.onDownPressed: event => step(event, -1)

        /// From what was typed, where something was.
        function step(event: var, steps: int): void {
            event.accepted = !(event.modifiers & (Qt.ControlModifier | Qt.AltModifier | Qt.MetaModifier));
            if (!event.accepted)
                return;
            take();
            number.stepped(event.modifiers & Qt.ShiftModifier ? 10 * steps : steps);
        }
        // Typing has broken the binding.
        function restore(): void {
            text = Qt.binding(() => number.shown);
        }
        function take(): void {
            const wanted = text;
            if (wanted !== number.shown)
                number.typed(wanted);
            restore();
        }

        background: RoundedBox {
            radius: 6
            color: field.hovered ? Theme.hoverFill : Theme.fill
            outlineWidth: field.activeFocus ? 2 : 0
            outline: Theme.accent
        }
    }
    Text {
        anchors.bottom: parent.bottom
        anchors.horizontalCenter: parent.horizontalCenter
        text: number.caption
        color: Theme.tertiaryText
        font.family: Theme.fontFamily
        font.pixelSize: 10
    }
}
