import QtQuick
import Framora.Controls
import Framora.Editor

/// What the keyboard commands, and the keys as help texts show them.
Item {
    id: shortcuts

    required property EditorSession session
    /// What Escape does.
    required property var leave

    /// What a key that is still down has done: it does so once, also where the toolkit takes its repeats for presses.
    property var held: null
    /// What ends the window waits for the key to be let go: its repeats would fall on whatever is beneath.
    property var ending: null
    function once(action: var): void {
        settled.stop();
        if (ending || held === action)
            return;
        held = action;
        action();
    }
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
                letGo();
        }
    }
    /// No key is down, or the window is no longer told.
    function letGo(): void {
        const action = ending;
        settled.stop();
        held = null;
        ending = null;
        if (action)
            action();
    }
    function copyAtRelease(): void {
        ending = () => session.triggerToolbarItem("CopyItem");
    }
    function closeAtRelease(): void {
        ending = () => session.close();
    }
    function save(): void {
        session.triggerToolbarItem("SaveItem");
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
        onTriggered: shortcuts.letGo()
    }
    Shortcut {
        sequence: "Escape"
        autoRepeat: false
        enabled: !shortcuts.editingText
        onActivated: shortcuts.once(shortcuts.leave)
    }
    Shortcut {
        id: closeKeys
        sequence: "Ctrl+W"
        autoRepeat: false
        onActivated: shortcuts.once(shortcuts.closeAtRelease)
    }

    Shortcut {
        id: copyKeys
        sequence: "Ctrl+C"
        autoRepeat: false
        enabled: !shortcuts.editingText
        onActivated: shortcuts.once(shortcuts.copyAtRelease)
    }
    Shortcut {
        sequence: "Ctrl+Ins"
        autoRepeat: false
        enabled: copyKeys.enabled
        onActivated: shortcuts.once(shortcuts.copyAtRelease)
    }
    Shortcut {
        id: saveKeys
        sequence: "Ctrl+S"
        autoRepeat: false
        onActivated: shortcuts.once(shortcuts.save)
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
