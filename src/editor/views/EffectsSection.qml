import QtQuick
import Framora.Controls
import Framora.Editor

/// What is done to the background after it is drawn.
Section {
    id: section

    required property ScreenshotEditorViewModel viewModel

    // Colours are adjusted where they were chosen here; a picture keeps its own, and nothing has no effects.
    readonly property bool hasBackground: viewModel.backgroundType !== "transparent"
    readonly property bool hasChosenColors: viewModel.backgroundType === "color" || viewModel.backgroundType === "gradient"

    title: Strings.localized("effects")

    StyleSlider {
        viewModel: section.viewModel
        field: "gradientConfig.blurAmount"
        enabled: section.hasBackground
        width: parent.width
        label: Strings.localized("blur")
        range: [0, 50]
        defaultValue: 0
        value: section.viewModel.config.gradientConfig.blurAmount
    }
    StyleSlider {
        viewModel: section.viewModel
        field: "gradientConfig.noiseAmount"
        enabled: section.hasBackground
        width: parent.width
        label: Strings.localized("noise")
        range: [0, 100]
        defaultValue: 0
        value: section.viewModel.config.gradientConfig.noiseAmount
    }
    StyleSlider {
        viewModel: section.viewModel
        field: "gradientConfig.saturation"
        enabled: section.hasChosenColors
        width: parent.width
        label: Strings.localized("saturation")
        range: [0, 200]
        defaultValue: 100
        unit: "%"
        value: section.viewModel.config.gradientConfig.saturation
    }
    StyleSlider {
        viewModel: section.viewModel
        field: "gradientConfig.brightness"
        enabled: section.hasChosenColors
        width: parent.width
        label: Strings.localized("brightness")
        range: [0, 200]
        defaultValue: 100
        unit: "%"
        value: section.viewModel.config.gradientConfig.brightness
    }
}
