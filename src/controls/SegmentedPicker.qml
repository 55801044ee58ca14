// qmllint disable unqualified deferred-property-id
import QtQuick
import QtQuick.Templates as T
import Framora.Controls

/// One choice of a few, side by side. Each option is { value, label, symbol }; label or symbol may be absent.
/// With `stacked` the symbol stands above its label.
///
/// A group of radio buttons, or with `tabs` of tabs: Tab reaches the chosen one, the arrow keys choose its neighbours.
Item {
    id: picker

    required property var options
    required property var value
    property string label: "" ///< The group's accessible name.
    property bool stacked: false
    /// Gives every option the same air instead of the same width.
    property bool fitted: false
    property bool tabs: false
    signal chosen(var value)

    readonly property int currentIndex: {
        for (let i = 0; i < options.length; ++i)
            if (options[i].value === value)
                return i;
        return -1;
    }
    readonly property real segmentWidth: (width - 4) / Math.max(1, options.length)
    /// What is left beside the contents, for each segment.
    readonly property real air: {
        let taken = 0;
        for (let i = 0; i < segments.count; ++i)
            taken += segments.itemAt(i)?.contentWidth ?? 0;
        return (width - 4 - taken) / Math.max(1, segments.count);
    }
    readonly property Item currentItem: currentIndex >= 0 && currentIndex < segments.count
                                        ? segments.itemAt(currentIndex) : null

    function choose(index: int): void {
        const count = options.length;
        const wanted = (index + count) % count;
        if (wanted !== currentIndex)
            chosen(options[wanted].value);
        segments.itemAt(currentIndex).forceActiveFocus(Qt.TabFocusReason);
    }

    implicitHeight: stacked ? 56 : 32
    implicitWidth: 72 * options.length
    opacity: enabled ? 1 : 0.4
    Accessible.role: tabs ? Accessible.PageTabList : Accessible.Grouping
    Accessible.name: label

    Rectangle {
        anchors.fill: parent
        radius: Theme.radius
        color: Theme.fill
    }
    Rectangle {
        visible: picker.currentItem !== null
        x: 2 + (picker.currentItem?.x ?? 0)
        y: 2
        width: picker.currentItem?.width ?? 0
        height: parent.height - 4
        radius: Theme.radius - 2
        color: Theme.raised
        border.color: Theme.raisedOutline
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
            id: segments
            model: picker.options
            delegate: T.AbstractButton {
                id: segment

                required property var modelData
                required property int index
                readonly property bool current: index === picker.currentIndex
                readonly property color ink: current || hovered ? Theme.text : Theme.secondaryText

                objectName: picker.objectName + "." + modelData.value
                readonly property real contentWidth: content.implicitWidth

                width: picker.fitted ? contentWidth + picker.air : picker.segmentWidth
                height: parent.height
                hoverEnabled: true
                focusPolicy: current || (picker.currentIndex < 0 && index === 0) ? Qt.TabFocus : Qt.NoFocus
                text: modelData.label ?? ""
                Accessible.name: text
                Accessible.role: picker.tabs ? Accessible.PageTab : Accessible.RadioButton
                Accessible.checkable: true
                Accessible.checked: current
                onClicked: picker.chosen(modelData.value)
                Keys.onLeftPressed: picker.choose(index - 1)
                Keys.onUpPressed: picker.choose(index - 1)
                Keys.onRightPressed: picker.choose(index + 1)
                Keys.onDownPressed: picker.choose(index + 1)
                Keys.onPressed: event => {
                    event.accepted = event.key === Qt.Key_Home || event.key === Qt.Key_End;
                    if (event.accepted)
                        picker.choose(event.key === Qt.Key_Home ? 0 : picker.options.length - 1);
                }

                contentItem: Item {
                    opacity: segment.pressed ? 0.7 : 1
                    Grid {
                        id: content
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
                            color: segment.current ? Theme.accentInk : segment.ink
                        }
                        Text {
                            visible: text !== ""
                            text: segment.text
                            color: segment.ink
                            font.family: Theme.fontFamily
                            font.pixelSize: picker.stacked ? 11 : 12
                            font.weight: Font.Medium
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
