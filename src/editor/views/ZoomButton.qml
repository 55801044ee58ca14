// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
import Framora.Controls
import Framora.Editor

/// The zoom in force; a click goes to the actual size, and from there to what fits.
T.AbstractButton {
    id: control

    required property ScreenshotEditorViewModel viewModel
    property string shortcut: ""
    readonly property int zoom: Math.round(viewModel.config.zoom)

    implicitWidth: Math.max(48, implicitContentWidth + 20)
    implicitHeight: 26
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    text: zoom + "%"
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.description: tipText
    readonly property string tipText: Strings.localized(zoom === 100 ? "zoom.fit" : "zoom.actual")
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
        color: control.pressed ? Theme.pressedFill : control.hovered ? Theme.card : Theme.surface
        outline: Theme.hairline
        Behavior on color { ColorAnimation { duration: Theme.shortMotion } }
        FocusRing { radius: parent.height / 2 + 3; shown: control.visualFocus }
    }

    HoverHandler { id: hover }
    Loader {
        active: hover.hovered
        sourceComponent: HelpTip {
            parent: control
            y: -implicitHeight - 6
            text: control.tipText
            shortcut: control.shortcut
            visible: hover.hovered && !control.pressed
        }
    }
}
