import QtQuick
import Framora.Editor

/// How the screenshot itself looks: its frame, its corners and its pose.
Column {
    id: panel

    required property ScreenshotEditorViewModel viewModel
    required property ColorPanelBridge colorPanel

    spacing: 22

    MockupSection { width: parent.width; viewModel: panel.viewModel; colorPanel: panel.colorPanel }
    CornersSection { width: parent.width; viewModel: panel.viewModel }
    TransformSection { width: parent.width; viewModel: panel.viewModel }
}
