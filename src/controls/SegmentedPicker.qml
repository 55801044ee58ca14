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
    readonly property real leastAir: 8
    readonly property var contentWidths: {
        const widths = [];
        for (let i = 0; i < segments.count; ++i)
            widths.push(segments.itemAt(i)?.contentWidth ?? 0);
        return widths;
    }
    /// Long words of another language make all labels smaller together.
    readonly property real shrink: {
        const count = Math.max(1, contentWidths.length);
        const taken = fitted ? contentWidths.reduce((sum, each) => sum + each, 0) : count * Math.max(0, ...contentWidths);
        return width > 0 && taken > 0 ? Math.min(1, (width - 4 - leastAir * count) / taken) : 1;
    }
    /// What is left beside the contents, for each segment.
    readonly property real air: {
        const taken = contentWidths.reduce((sum, each) => sum + each * shrink, 0);
        return (width - 4 - taken) / Math.max(1, contentWidths.length);
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

    function keyPressed(index: int, key: int): bool {
        switch (key) {
        case Qt.Key_Left:
        case Qt.Key_Up:
            choose(index - 1);
            return true;
        case Qt.Key_Right:
        case Qt.Key_Down:
            choose(index + 1);
            return true;
        case Qt.Key_Home:
            choose(0);
            return true;
        case Qt.Key_End:
            choose(options.length - 1);
            return true;
        }
        return false;
    }
    /// Where Tab stops: at the chosen one, or the first.
    function isStop(index: int): bool {
        return index === Math.max(0, currentIndex);
    }
    function fontSizeOf(fullSize: int): int {
        return Math.max(9, Math.floor(fullSize * shrink));
    }
    function widthOf(contentWidth: real): real {
        return fitted ? contentWidth * shrink + air : segmentWidth;
    }

    implicitHeight: stacked ? 56 : 32
    implicitWidth: 72 * options.length
    opacity: enabled ? 1 : 0.4
    Accessible.role: tabs ? Accessible.PageTabList : Accessible.Grouping
    Accessible.name: label

    RoundedBox {
        anchors.fill: parent
        radius: Theme.radius
        color: Theme.fill
    }
    RoundedBox {
        visible: picker.currentItem !== null
        x: 2 + (picker.currentItem?.x ?? 0)
        y: 2
        width: picker.currentItem?.width ?? 0
        height: parent.height - 4
        radius: Theme.radius - 2
        color: Theme.raised
        outline: Theme.raisedOutline
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
            // Two types, since to a screen reader a radio button remains one whatever its `Accessible.role`.
            delegate: picker.tabs ? tab : radio
        }
    }
    Component {
        id: radio
        T.RadioButton {
            id: radioSegment

            required property var modelData
            required property int index
            readonly property alias contentWidth: radioContent.contentWidth

            objectName: picker.objectName + "." + modelData.value
            width: picker.widthOf(contentWidth)
            height: picker.height - 4
            hoverEnabled: true
            focusPolicy: picker.isStop(index) || activeFocus ? Qt.TabFocus : Qt.NoFocus
            text: modelData.label ?? ""
            checked: index === picker.currentIndex
            onClicked: picker.chosen(modelData.value)
            Accessible.onToggleAction: clicked()
            Accessible.onPressAction: clicked()
            Keys.onPressed: event => event.accepted = picker.keyPressed(index, event.key)
            background: SegmentContent {
                id: radioContent
                button: radioSegment
                symbol: radioSegment.modelData.symbol ?? ""
                stacked: picker.stacked
                fontSize: picker.fontSizeOf(fullFontSize)
                current: radioSegment.index === picker.currentIndex
            }
        }
    }
    Component {
        id: tab
        T.TabButton {
            id: tabSegment

            required property var modelData
            required property int index
            readonly property alias contentWidth: tabContent.contentWidth

            objectName: picker.objectName + "." + modelData.value
            width: picker.widthOf(contentWidth)
            height: picker.height - 4
            hoverEnabled: true
            focusPolicy: picker.isStop(index) || activeFocus ? Qt.TabFocus : Qt.NoFocus
            text: modelData.label ?? ""
            checked: index === picker.currentIndex
            onClicked: picker.chosen(modelData.value)
            // A tab has no action of its own.
            Accessible.onPressAction: clicked()
            Keys.onPressed: event => event.accepted = picker.keyPressed(index, event.key)
            background: SegmentContent {
                id: tabContent
                button: tabSegment
                symbol: tabSegment.modelData.symbol ?? ""
                stacked: picker.stacked
                fontSize: picker.fontSizeOf(fullFontSize)
                current: tabSegment.index === picker.currentIndex
            }
        }
    }
}
