// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Editor

/// The zoom in force; a click goes to the actual size, and from there to what fits.
Pressable {
    id: control

    required property ScreenshotEditorViewModel viewModel
    readonly property int zoom: Math.round(viewModel.config.zoom)

    implicitWidth: Math.max(48, implicitContentWidth + 20)
    implicitHeight: 26
    text: zoom + "%"
    Accessible.name: text
    Accessible.description: help
    help: Strings.localized(zoom === 100 ? "zoom.fit" : "zoom.actual")
    helpAbove: true
    onClicked: zoom === 100 ? viewModel.fitToWindow() : viewModel.zoomToActualSize()

    contentItem: Text {
        text: control.text
        color: control.hovered ? Theme.text : Theme.secondaryText
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        font.family: Theme.fontFamily
        font.pixelSize: 12
        font.weight: Font.Medium
    }
    background: RoundedBox {
        radius: height / 2
        color: control.down ? Theme.pressedFill : control.hovered ? Theme.card : Theme.surface
        outline: Theme.hairline
        Behavior on color { ColorAnimation { duration: Theme.shortMotion } }
        FocusRing { radius: parent.height / 2 + 3; shown: control.visualFocus }
    }
}
