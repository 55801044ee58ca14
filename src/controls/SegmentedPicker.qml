// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
import Framora.Controls

/// One choice of a few, side by side. Each option is { value, label, symbol }; label or symbol may be absent.
/// With `stacked` the symbol stands above its label.
Item {
    id: picker

    required property var options
    required property var value
    property bool stacked: false
    signal chosen(var value)

    readonly property int currentIndex: {
        for (let i = 0; i < options.length; ++i)
            if (options[i].value === value)
                return i;
        return -1;
    }
    readonly property real segmentWidth: (width - 4) / Math.max(1, options.length)

    implicitHeight: stacked ? 56 : 32

    Rectangle {
        anchors.fill: parent
        radius: Theme.radius
        color: Theme.fill
    }
    Rectangle {
        visible: picker.currentIndex >= 0
        x: 2 + picker.currentIndex * picker.segmentWidth
        y: 2
        width: picker.segmentWidth
        height: parent.height - 4
        radius: Theme.radius - 2
        color: Theme.raised
        border.color: Theme.dark ? "transparent" : Theme.outline
        Behavior on x {
            enabled: picker.width > 0 && Theme.motion > 0
            NumberAnimation { duration: Theme.motion; easing.type: Easing.OutCubic }
        }
    }
    Row {
        x: 2
        y: 2
        height: parent.height - 4
        Repeater {
            model: picker.options
            delegate: T.AbstractButton {
                id: segment

                required property var modelData
                required property int index
                readonly property bool current: index === picker.currentIndex
                readonly property color ink: current ? Theme.text : hovered ? Theme.text : Theme.secondaryText

                width: picker.segmentWidth
                height: parent.height
                hoverEnabled: true
                focusPolicy: Qt.TabFocus
                text: modelData.label ?? ""
                checked: current
                objectName: picker.objectName + "." + modelData.value
                Accessible.name: text
                Accessible.role: Accessible.RadioButton
                onClicked: picker.chosen(modelData.value)
                Keys.onLeftPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
                Keys.onRightPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)

                contentItem: Item {
                    Grid {
                        anchors.centerIn: parent
                        columns: picker.stacked ? 1 : 2
                        columnSpacing: 6
                        rowSpacing: 3
                        horizontalItemAlignment: Grid.AlignHCenter
                        verticalItemAlignment: Grid.AlignVCenter
                        SymbolIcon {
                            visible: symbol !== ""
                            symbol: segment.modelData.symbol ?? ""
                            size: picker.stacked ? 20 : 16
                            color: segment.current ? Theme.accent : segment.ink
                        }
                        Text {
                            visible: text !== ""
                            text: segment.text
                            color: segment.ink
                            font.family: Theme.fontFamily
                            font.pixelSize: picker.stacked ? 11 : 12
                            font.weight: segment.current ? Font.DemiBold : Font.Medium
                        }
                    }
                }
                background: Item {
                    FocusRing {
                        anchors.margins: 0
                        radius: Theme.radius - 2
                        shown: segment.visualFocus
                    }
                }
            }
        }
    }
}
