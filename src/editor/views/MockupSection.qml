import QtQuick
import Framora.Controls
import Framora.Editor

/// The frame around the screenshot.
Section {
    id: section

    required property ScreenshotEditorViewModel viewModel
    required property ColorPanelBridge colorPanel
    readonly property bool bordered: viewModel.mockupStyle === "border"

    title: Strings.localized("mockup")

    SegmentedPicker {
        objectName: "mockupStyle"
        width: parent.width
        label: section.title
        options: [
            { value: "defaultStyle", label: "Default" },
            { value: "glassEffect", label: "Glass" },
            { value: "border", label: "Border" }
        ]
        value: section.viewModel.mockupStyle
        onChosen: value => section.viewModel.set("mockupStyle", value)
    }
    StyleSlider {
        viewModel: section.viewModel
        field: "mockupBorderSize"
        visible: section.bordered
        width: parent.width
        label: Strings.localized("size")
        range: [0, 10]
        step: 0.5
        decimals: 1
        defaultValue: 3
        value: section.viewModel.config.mockupBorderSize
    }
    ColorRow {
        objectName: "borderColor"
        visible: section.bordered
        width: parent.width
        label: Strings.localized("color")
        field: "borderColor"
        swatch: section.viewModel.borderColor
        colorPanel: section.colorPanel
    }
}
