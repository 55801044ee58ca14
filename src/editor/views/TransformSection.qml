import QtQuick
import Framora.Controls
import Framora.Editor

/// The screenshot's size and pose, in the plane and out of it.
Section {
    id: section

    required property ScreenshotEditorViewModel viewModel
    readonly property double rotation: viewModel.config.rotation

    title: Strings.localized("transform")

    StyleSlider {
        viewModel: section.viewModel
        field: "scale"
        width: parent.width
        label: Strings.localized("scale")
        range: [0.1, 3]
        decimals: 2
        defaultValue: 1
        value: section.viewModel.config.scale
    }
    CaptionedRow {
        width: parent.width
        label: Strings.localized("rotation")

        Row {
            spacing: 4
            IconButton {
                objectName: "rotation.left"
                bordered: true
                symbol: "rotate.left"
                help: Strings.localized("rotate.left")
                onClicked: section.viewModel.set("rotation", section.rotation - 90)
            }
            IconButton {
                objectName: "rotation.right"
                bordered: true
                symbol: "rotate.right"
                help: Strings.localized("rotate.right")
                onClicked: section.viewModel.set("rotation", section.rotation + 90)
            }
            Text {
                objectName: "rotation.text"
                anchors.verticalCenter: parent.verticalCenter
                leftPadding: 6
                text: SliderValueText.text(section.rotation, 0, "°")
                color: Theme.tertiaryText
                font.family: Theme.monospacedFamily
                font.pixelSize: 11
            }
        }
        PushButton {
            objectName: "rotation.reset"
            anchors.right: parent.right
            text: "Reset"
            help: "Reset"
            accessibleName: Strings.localized("reset.named").arg(Strings.localized("rotation"))
            enabled: section.rotation !== 0
            onClicked: section.viewModel.set("rotation", 0)
        }
    }
    StyleSlider {
        viewModel: section.viewModel
        field: "rotationX"
        width: parent.width
        label: Strings.localized("rotation.x")
        range: [-90, 90]
        defaultValue: 0
        resetAlwaysShows: true
        value: section.viewModel.config.rotationX
    }
    StyleSlider {
        viewModel: section.viewModel
        field: "rotationY"
        width: parent.width
        label: Strings.localized("rotation.y")
        range: [-90, 90]
        defaultValue: 0
        resetAlwaysShows: true
        value: section.viewModel.config.rotationY
    }
}
