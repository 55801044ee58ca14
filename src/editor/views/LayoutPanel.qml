import QtQuick
import Framora.Editor

/// The room around the screenshot, and the size of the whole.
Column {
    id: panel

    required property ScreenshotEditorViewModel viewModel

    spacing: 22

    LayoutSection { width: parent.width; viewModel: panel.viewModel }
    ExportSizeSection { width: parent.width; viewModel: panel.viewModel }
}
