import QtQuick
import Framora.Controls
import Framora.Editor

/// A slider of one field of the style; one hold of it is one step for undo.
SliderWithDefault {
    id: slider

    required property ScreenshotEditorViewModel viewModel
    required property string field

    objectName: field
    onMoved: value => slider.viewModel.set(slider.field, value)
    onEditStarted: slider.viewModel.beginEdit(slider.field)
    onEditFinished: slider.viewModel.endEdit()
}
