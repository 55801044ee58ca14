import QtQuick
import Framora.Controls
import Framora.Editor

/// The screenshot's size and pose, in the plane and out of it.
Section {
    id: section

    required property ScreenshotEditorViewModel viewModel

    title: Strings.localized("transform")

    SliderWithDefault {
        objectName: "scale"
        width: parent.width
        label: Strings.localized("scale")
        from: 0.1
        to: 3
        decimals: 2
        defaultValue: 1
        value: section.viewModel.config.scale
        onMoved: value => section.viewModel.set("scale", value)
    }
    Item {
        width: parent.width
        height: 32

        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: Strings.localized("rotation")
        }
        Row {
            anchors.right: parent.right
            spacing: 6
            Text {
                objectName: "rotation.text"
                anchors.verticalCenter: parent.verticalCenter
                width: 40
                text: SliderValueText.text(section.viewModel.config.rotation, 0, "°")
                color: Theme.tertiaryText
                font.family: Theme.monospacedFamily
                font.pixelSize: 11
                horizontalAlignment: Text.AlignHCenter
            }
            IconButton {
                objectName: "rotation.left"
                bordered: true
                symbol: "rotate.left"
                help: "Rotate Left"
                onClicked: section.viewModel.set("rotation", section.viewModel.config.rotation - 90)
            }
            IconButton {
                objectName: "rotation.right"
                bordered: true
                symbol: "rotate.right"
                help: "Rotate Right"
                onClicked: section.viewModel.set("rotation", section.viewModel.config.rotation + 90)
            }
            PushButton {
                objectName: "rotation.reset"
                text: "Reset"
                help: "Reset"
                onClicked: section.viewModel.set("rotation", 0)
            }
        }
    }
    TiltRow {
        objectName: "rotationX"
        width: parent.width
        label: Strings.localized("rotation.x")
        value: section.viewModel.config.rotationX
        onMoved: value => section.viewModel.set("rotationX", value)
    }
    TiltRow {
        objectName: "rotationY"
        width: parent.width
        label: Strings.localized("rotation.y")
        value: section.viewModel.config.rotationY
        onMoved: value => section.viewModel.set("rotationY", value)
    }
}
