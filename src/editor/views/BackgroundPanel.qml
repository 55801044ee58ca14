import QtQuick
import Framora.Editor

/// What lies behind the screenshot.
Column {
    id: panel

    required property ScreenshotEditorViewModel viewModel
    required property ColorPanelBridge colorPanel
    signal importRequested

    spacing: 22

    BackgroundSection {
        width: parent.width
        viewModel: panel.viewModel
        colorPanel: panel.colorPanel
        onImportRequested: panel.importRequested()
    }
    EffectsSection { width: parent.width; viewModel: panel.viewModel }
}
