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

    SliderWithDefault {
        objectName: "gradientConfig.blurAmount"
        enabled: section.hasBackground
        width: parent.width
        label: Strings.localized("blur")
        to: 50
        defaultValue: 0
        value: section.viewModel.config.gradientConfig.blurAmount
        onMoved: value => section.viewModel.set("gradientConfig.blurAmount", value)
    }
    SliderWithDefault {
        objectName: "gradientConfig.noiseAmount"
        enabled: section.hasBackground
        width: parent.width
        label: Strings.localized("noise")
        to: 100
        defaultValue: 0
        value: section.viewModel.config.gradientConfig.noiseAmount
        onMoved: value => section.viewModel.set("gradientConfig.noiseAmount", value)
    }
    SliderWithDefault {
        objectName: "gradientConfig.saturation"
        enabled: section.hasChosenColors
        width: parent.width
        label: Strings.localized("saturation")
        to: 200
        defaultValue: 100
        unit: "%"
        value: section.viewModel.config.gradientConfig.saturation
        onMoved: value => section.viewModel.set("gradientConfig.saturation", value)
    }
    SliderWithDefault {
        objectName: "gradientConfig.brightness"
        enabled: section.hasChosenColors
        width: parent.width
        label: Strings.localized("brightness")
        to: 200
        defaultValue: 100
        unit: "%"
        value: section.viewModel.config.gradientConfig.brightness
        onMoved: value => section.viewModel.set("gradientConfig.brightness", value)
    }
}
