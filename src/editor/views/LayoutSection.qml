import QtQuick
import Framora.Controls
import Framora.Editor

/// Where the screenshot stands in its canvas.
Section {
    id: section

    required property ScreenshotEditorViewModel viewModel
    readonly property var offset: viewModel.config.screenshotOffset

    title: Strings.localized("layout")

    SliderWithDefault {
        objectName: "padding"
        width: parent.width
        label: Strings.localized("padding")
        to: 200
        defaultValue: 80
        value: section.viewModel.config.padding
        onMoved: value => section.viewModel.set("padding", value)
    }
    SliderWithDefault {
        objectName: "imageScale"
        width: parent.width
        label: Strings.localized("scale")
        from: 10
        to: 200
        defaultValue: 100
        unit: "%"
        value: section.viewModel.config.imageScale
        onMoved: value => section.viewModel.set("imageScale", value)
    }
    Item {
        width: parent.width
        height: 32
        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: Strings.localized("position")
        }
        Text {
            objectName: "position.text"
            anchors.right: center.left
            anchors.rightMargin: 12
            anchors.verticalCenter: parent.verticalCenter
            text: Math.round(section.offset.width) + ", " + Math.round(section.offset.height)
            color: Theme.tertiaryText
            font.family: Theme.monospacedFamily
            font.pixelSize: 11
        }
        PushButton {
            id: center
            objectName: "position.center"
            anchors.right: parent.right
            text: Strings.localized("center")
            enabled: section.offset.width !== 0 || section.offset.height !== 0
            onClicked: section.viewModel.setScreenshotOffset(Qt.size(0, 0))
        }
    }
}
