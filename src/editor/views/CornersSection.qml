import QtQuick
import Framora.Controls
import Framora.Editor

/// The corners of the screenshot: a family, and the radius that refines it.
Section {
    id: section

    required property ScreenshotEditorViewModel viewModel

    title: Strings.localized("corners")

    SegmentedPicker {
        objectName: "borderStyle"
        width: parent.width
        options: [
            { value: "sharp", label: "Sharp" },
            { value: "curved", label: "Curved" },
            { value: "round", label: "Round" }
        ]
        value: section.viewModel.borderStyle
        onChosen: value => section.viewModel.selectBorderStyle(value)
    }
    SliderWithDefault {
        objectName: "borderRadius"
        width: parent.width
        label: Strings.localized("radius")
        to: 40
        defaultValue: 20
        value: section.viewModel.config.borderRadius
        onMoved: value => section.viewModel.set("borderRadius", value)
    }
}
