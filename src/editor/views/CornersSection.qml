import QtQuick
import Framora.Controls
import Framora.Editor

/// The corners of the screenshot: a family, and the radius that refines it.
Section {
    id: section

    required property ScreenshotEditorViewModel viewModel

    title: Strings.localized("corners")

    CaptionedRow {
        width: parent.width
        label: "Style"

        SegmentedPicker {
            objectName: "borderStyle"
            width: parent.width
            label: "Style"
            options: [
                { value: "sharp", label: "Sharp" },
                { value: "curved", label: "Curved" },
                { value: "round", label: "Round" }
            ]
            value: section.viewModel.borderStyle
            onChosen: value => section.viewModel.selectBorderStyle(value)
        }
    }
    StyleSlider {
        viewModel: section.viewModel
        field: "borderRadius"
        width: parent.width
        label: Strings.localized("radius")
        range: [0, 40]
        defaultValue: 20
        value: section.viewModel.config.borderRadius
    }
}
