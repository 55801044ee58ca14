// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Editor

/// The kind of background, and what that kind offers.
Section {
    id: section

    required property ScreenshotEditorViewModel viewModel
    required property ColorPanelBridge colorPanel
    signal importRequested

    title: Strings.localized("background")

    SegmentedPicker {
        objectName: "backgroundType"
        label: section.title
        width: parent.width
        stacked: true
        fitted: true
        options: [
            { value: "transparent", label: Strings.localized("transparent"), symbol: "checkerboard.rectangle" },
            { value: "color", label: Strings.localized("color"), symbol: "drop.fill" },
            { value: "gradient", label: Strings.localized("gradient"), symbol: "circle.lefthalf.filled" },
            { value: "image", label: Strings.localized("image"), symbol: "photo" }
        ]
        value: section.viewModel.backgroundType
        onChosen: value => section.viewModel.set("backgroundType", value)
    }
    Loader {
        id: kind
        width: parent.width
        visible: item !== null
        sourceComponent: ({ color: color, gradient: gradient, image: image })[section.viewModel.backgroundType] ?? null
    }
    Component { id: color; ColorBackground { width: kind.width; viewModel: section.viewModel; colorPanel: section.colorPanel } }
    Component { id: gradient; GradientEditor { width: kind.width; viewModel: section.viewModel; colorPanel: section.colorPanel } }
    Component { id: image; WallpaperGrid { width: kind.width; viewModel: section.viewModel; onImportRequested: section.importRequested() } }
}
