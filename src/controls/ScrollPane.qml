// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
import Framora.Controls

/// What may be longer than its room: it brings into view what the keyboard has reached, with room around it, and shows a
/// quiet bar for a moment, while it moves and while the pointer is on it.
Flickable {
    id: pane

    function reveal(item: Item): void {
        let above = item;
        while (above && above !== contentItem)
            above = above.parent;
        if (!above || height <= 0)
            return;
        const top = item.mapToItem(contentItem, 0, 0).y;
        const room = Math.min(24, Math.max(0, (height - item.height) / 2));
        const wanted = Math.max(top + item.height + room - height, Math.min(contentY, top - room));
        scrollTo.to = Math.max(0, Math.min(contentHeight - height, wanted));
        if (scrollTo.to !== contentY)
            scrollTo.restart();
    }
    /// Another content begins at its top.
    function restart(): void {
        scrollTo.stop();
        contentY = 0;
        arrival.restart();
    }

    clip: true
    contentWidth: width
    boundsBehavior: Flickable.StopAtBounds
    interactive: contentHeight > height

    NumberAnimation {
        id: scrollTo
        target: pane
        property: "contentY"
        duration: Theme.motion
        easing.type: Easing.OutCubic
    }
    Connections {
        target: pane.Window.window
        function onActiveFocusItemChanged(): void {
            const item = pane.Window.activeFocusItem;
            // A text that only the pointer reaches is being selected, and must not move.
            if (item && (item.activeFocusOnTab || !(item instanceof TextEdit)))
                pane.reveal(item);
        }
    }
    // What ends with the window would look complete.
    Timer {
        id: arrival
        interval: 1200
        running: true
    }
    HoverHandler { id: pointer }
    T.ScrollBar.vertical: T.ScrollBar {
        id: bar
        padding: 3
        interactive: size < 1
        // What has the keys comes into view by itself.
        Accessible.ignored: true
        implicitWidth: 10
        contentItem: RoundedBox {
            objectName: pane.objectName + ".bar"
            implicitWidth: 4
            radius: 2
            color: Theme.tertiaryText
            opacity: bar.size < 1 && (bar.active || scrollTo.running || pointer.hovered || arrival.running) ? 0.6 : 0
            Behavior on opacity { NumberAnimation { duration: Theme.motion } }
        }
    }
}
