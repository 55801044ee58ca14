// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
import Framora.Controls

/// A column of sections that scrolls, and keeps in view what has the keys.
Flickable {
    id: pane

    default property alias content: column.data

    clip: true
    contentWidth: width
    contentHeight: column.implicitHeight + 32
    boundsBehavior: Flickable.StopAtBounds

    function show(item: Item): void {
        let above = item;
        while (above && above !== contentItem)
            above = above.parent;
        if (!above || !item.activeFocusOnTab)
            return;
        const top = item.mapToItem(contentItem, 0, 0).y - 24;
        const bottom = top + item.height + 48;
        if (top < contentY)
            contentY = Math.max(0, top);
        else if (bottom > contentY + height)
            contentY = Math.min(contentHeight - height, bottom - height);
    }
    Connections {
        target: pane.Window.window
        function onActiveFocusItemChanged(): void {
            if (pane.Window.activeFocusItem)
                pane.show(pane.Window.activeFocusItem);
        }
    }

    // A pane whose last section in view ends with the window would look complete.
    Timer {
        id: arrival
        interval: 1200
        running: true
    }
    Column {
        id: column
        x: (pane.width - width) / 2
        y: 8
        width: Math.min(pane.width - 40, 560)
        spacing: 22
    }
    T.ScrollBar.vertical: T.ScrollBar {
        id: bar
        padding: 3
        implicitWidth: 12
        contentItem: RoundedBox {
            objectName: "pane.bar"
            implicitWidth: 6
            radius: 3
            color: Theme.tertiaryText
            opacity: bar.size < 1 && (bar.active || bar.hovered || arrival.running) ? 0.6 : 0
            Behavior on opacity { NumberAnimation { duration: Theme.motion } }
        }
    }
}
