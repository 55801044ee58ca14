import QtQuick
import Framora.Controls
import Framora.Editor

/// What the keyboard commands, and the keys as help texts show them.
Item {
    id: shortcuts

    required property EditorSession session
    signal cancelled

    /// What ends the window waits for the key to be let go: its repeats would fall on whatever is beneath.
    property var ending: null
    function keyReleased(key: int): void {
        switch (key) {
        // The key itself may still be down when its modifier comes up.
        case Qt.Key_Control:
        case Qt.Key_Shift:
        case Qt.Key_Alt:
        case Qt.Key_AltGr:
        case Qt.Key_Meta:
            break;
        default:
            if (settled.interval > 0)
                settled.restart();
            else
                end();
        }
    }
    function endAtRelease(action: var): void {
        ending = action;
        settled.stop();
    }
    function closeWindow(): void {
        session.close();
    }
    function copyPicture(): void {
        session.triggerToolbarItem("CopyItem");
    }
    function end(): void {
        const action = ending;
        ending = null;
        if (action)
            action();
    }

    readonly property ScreenshotEditorViewModel viewModel: session.viewModel
    /// A text field keeps the usual keys to itself.
    readonly property bool editingText: Window.activeFocusItem instanceof TextInput

    readonly property string close: closeKeys.nativeText
    readonly property string undo: undoKeys.nativeText
    readonly property string redo: redoKeys.nativeText
    readonly property string zoomIn: zoomInKeys.nativeText
    readonly property string zoomOut: zoomOutKeys.nativeText
    readonly property string fit: fitKeys.nativeText
    readonly property string actualSize: actualSizeKeys.nativeText

    function ofToolbarItem(identifier: string): string {
        switch (identifier) {
        case "CopyItem": return copyKeys.nativeText;
        case "SaveItem": return saveKeys.nativeText;
        case "ZoomFitItem": return fit;
        case "ZoomActualItem": return actualSize;
        default: return "";
        }
    }

    Timer {
        id: settled
        interval: Theme.keySettling
        onTriggered: shortcuts.end()
    }
    Shortcut {
        sequence: "Escape"
        autoRepeat: false
        enabled: !shortcuts.editingText
        onActivated: {
            if (shortcuts.ending)
                settled.stop();
            else
                shortcuts.cancelled();
        }
    }
    Shortcut {
        id: closeKeys
        sequence: "Ctrl+W"
        autoRepeat: false
        onActivated: shortcuts.endAtRelease(shortcuts.closeWindow)
    }

    Shortcut {
        id: copyKeys
        sequence: "Ctrl+C"
        autoRepeat: false
        enabled: !shortcuts.editingText
        onActivated: shortcuts.endAtRelease(shortcuts.copyPicture)
    }
    Shortcut {
        sequence: "Ctrl+Ins"
        autoRepeat: false
        enabled: copyKeys.enabled
        onActivated: shortcuts.endAtRelease(shortcuts.copyPicture)
    }
    Shortcut {
        id: saveKeys
        sequence: "Ctrl+S"
        autoRepeat: false
        onActivated: shortcuts.session.triggerToolbarItem("SaveItem")
    }

    // Not in the middle of a drag, which would go on from another place.
    Shortcut {
        id: undoKeys
        sequence: "Ctrl+Z"
        enabled: !shortcuts.editingText && !shortcuts.session.isDraggingScreenshot
        onActivated: shortcuts.viewModel.undo()
    }
    Shortcut {
        id: redoKeys
        sequence: "Ctrl+Shift+Z"
        enabled: undoKeys.enabled
        onActivated: shortcuts.viewModel.redo()
    }
    Shortcut { sequence: "Ctrl+Y"; enabled: undoKeys.enabled; onActivated: shortcuts.viewModel.redo() }

    Shortcut { id: zoomInKeys; sequence: "Ctrl++"; onActivated: shortcuts.viewModel.zoomIn() }
    Shortcut { sequence: "Ctrl+="; onActivated: shortcuts.viewModel.zoomIn() }
    Shortcut { id: zoomOutKeys; sequence: "Ctrl+-"; onActivated: shortcuts.viewModel.zoomOut() }
    Shortcut { id: fitKeys; sequence: "Ctrl+0"; onActivated: shortcuts.session.triggerToolbarItem("ZoomFitItem") }
    Shortcut {
        id: actualSizeKeys
        sequence: "Ctrl+1"
        onActivated: shortcuts.session.triggerToolbarItem("ZoomActualItem")
    }
}
