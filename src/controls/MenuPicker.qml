// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
import Framora.Controls

/// One choice of many, from a list that opens below it. Each option is { value, label }. `text` is the accessible
/// name. The arrow keys choose without opening it, Return and Space open it and choose in it.
T.ComboBox {
    id: control

    required property var options
    required property var value
    property string text: ""
    signal chosen(var value)

    implicitWidth: 160
    implicitHeight: 32
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    opacity: enabled ? 1 : 0.4
    model: options
    textRole: "label"
    valueRole: "value"
    currentIndex: options.findIndex(option => option.value === value)
    leftPadding: 12
    rightPadding: 32
    Keys.forwardTo: ReleaseKeys {
        id: keys
        button: control
        onStruck: {
            if (!control.popup.visible) {
                control.popup.open();
                return;
            }
            control.activated(control.highlightedIndex);
            control.popup.close();
        }
    }
    down: keys.heldKey ? true : undefined
    Accessible.role: Accessible.ComboBox
    Accessible.name: text
    onActivated: index => {
        const choice = options[index].value;
        // The user's choice broke the binding.
        currentIndex = Qt.binding(() => options.findIndex(option => option.value === value));
        chosen(choice);
    }

    contentItem: Text {
        text: control.displayText
        color: Theme.text
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        font.family: Theme.fontFamily
        font.pixelSize: 13
    }
    indicator: SymbolIcon {
        x: control.width - width - 10
        y: (control.height - height) / 2
        symbol: "chevron.down"
        size: 14
        color: Theme.secondaryText
    }
    background: RoundedBox {
        radius: Theme.radius
        color: Theme.stateFill(control.hovered, control.down)
        Behavior on color { ColorAnimation { duration: Theme.shortMotion } }
        FocusRing { shown: control.visualFocus }
    }
    delegate: T.ItemDelegate {
        id: entry

        required property var modelData
        required property int index

        width: control.popup.availableWidth
        implicitHeight: 30
        hoverEnabled: true
        text: modelData.label
        highlighted: control.highlightedIndex === index
        Accessible.role: Accessible.ListItem
        Accessible.name: text

        contentItem: Item {
            SymbolIcon {
                x: 8
                anchors.verticalCenter: parent.verticalCenter
                visible: control.currentIndex === entry.index
                symbol: "checkmark"
                size: 14
                color: entry.highlighted ? Theme.accentText : Theme.text
            }
            Text {
                x: 30
                width: parent.width - 38
                anchors.verticalCenter: parent.verticalCenter
                text: entry.text
                color: entry.highlighted ? Theme.accentText : Theme.text
                elide: Text.ElideRight
                font.family: Theme.fontFamily
                font.pixelSize: 13
            }
        }
        background: RoundedBox {
            radius: 6
            color: entry.highlighted ? Theme.accent : "transparent"
        }
    }
    popup: T.Popup {
        y: control.height + 4
        width: control.width
        implicitHeight: Math.min(contentItem.implicitHeight + topPadding + bottomPadding, 320)
        padding: 5
        margins: 8

        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: control.delegateModel // qmllint disable type
            currentIndex: control.highlightedIndex
            boundsBehavior: Flickable.StopAtBounds
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
