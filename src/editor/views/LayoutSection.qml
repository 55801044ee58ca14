import QtQuick
import Framora.Controls
import Framora.Editor

/// Where the screenshot stands in its canvas.
Section {
    id: section

    required property ScreenshotEditorViewModel viewModel
    readonly property var offset: viewModel.config.screenshotOffset
    /// How far a drag that is under way has come.
    readonly property size drag: Qt.size(viewModel.offset.width - viewModel.lastOffset.width,
                                         viewModel.offset.height - viewModel.lastOffset.height)

    title: Strings.localized("layout")

    StyleSlider {
        viewModel: section.viewModel
        field: "padding"
        width: parent.width
        label: Strings.localized("padding")
        range: [0, 200]
        defaultValue: 80
        value: section.viewModel.config.padding
    }
    StyleSlider {
        viewModel: section.viewModel
        field: "imageScale"
        width: parent.width
        label: Strings.localized("scale")
        range: [10, 200]
        defaultValue: 100
        unit: "%"
        value: section.viewModel.config.imageScale
    }
    CaptionedRow {
        width: parent.width
        label: Strings.localized("position")

        Text {
            objectName: "position.text"
            anchors.verticalCenter: parent.verticalCenter
            text: Math.round(section.offset.width + section.drag.width) + ", "
                  + Math.round(section.offset.height + section.drag.height)
            color: Theme.tertiaryText
            font.family: Theme.monospacedFamily
            font.pixelSize: 11
        }
        PushButton {
            objectName: "position.center"
            anchors.right: parent.right
            text: Strings.localized("center")
            enabled: section.offset.width !== 0 || section.offset.height !== 0
            onClicked: section.viewModel.setScreenshotOffset(Qt.size(0, 0))
        }
    }
}
