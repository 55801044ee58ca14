// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
import Framora.Controls
import Framora.Editor

/// The one colour panel. It stays open beside the sidebar while other controls are used, and reports every change
/// as it happens.
Rectangle {
    id: panel

    required property ColorPanelBridge bridge
    readonly property color pureHue: Qt.hsva(bridge.hue, 1, 1, 1)

    objectName: "colorPanel"
    width: 256
    height: column.implicitHeight + 24
    radius: Theme.cardRadius
    color: Theme.surface
    border.color: Theme.outline

    // Keeps clicks between the controls from reaching the canvas, and lets the panel be moved.
    MouseArea {
        anchors.fill: parent
        drag.target: panel.parent
    }
    Column {
        id: column
        x: 12
        y: 12
        width: parent.width - 24
        spacing: 12

        Item {
            width: parent.width
            height: 24
            Text {
                anchors.verticalCenter: parent.verticalCenter
                x: 2
                text: Strings.localized("color")
                color: Theme.text
                font.family: Theme.fontFamily
                font.pixelSize: 13
                font.weight: Font.DemiBold
            }
            IconButton {
                objectName: "colorPanel.close"
                anchors.right: parent.right
                width: 24
                height: 24
                symbol: "xmark"
                symbolSize: 14
                tint: Theme.secondaryText
                text: "Close"
                onClicked: panel.bridge.close()
            }
        }
        Item {
            id: field
            objectName: "colorPanel.field"
            width: parent.width
            height: 152
            Rectangle {
                anchors.fill: parent
                gradient: Gradient {
                    orientation: Gradient.Horizontal
                    GradientStop { position: 0; color: "#ffffff" }
                    GradientStop { position: 1; color: panel.pureHue }
                }
            }
            Rectangle {
                anchors.fill: parent
                gradient: Gradient {
                    GradientStop { position: 0; color: "#00000000" }
                    GradientStop { position: 1; color: "#ff000000" }
                }
            }
            Rectangle {
                anchors.fill: parent
                color: "transparent"
                border.color: Theme.outline
            }
            MouseArea {
                anchors.fill: parent
                preventStealing: true
                function pick(mouse: var): void {
                    panel.bridge.setHsv(panel.bridge.hue, mouse.x / width, 1 - mouse.y / height);
                }
                onPressed: mouse => pick(mouse)
                onPositionChanged: mouse => pick(mouse)
            }
            Rectangle {
                x: panel.bridge.saturation * parent.width - 8
                y: (1 - panel.bridge.brightness) * parent.height - 8
                width: 16
                height: 16
                radius: 8
                color: panel.bridge.color
                border.width: 2
                border.color: "#ffffff"
                Rectangle {
                    anchors.fill: parent
                    anchors.margins: -1
                    radius: 9
                    color: "transparent"
                    border.color: "#60000000"
                }
            }
        }
        Item {
            objectName: "colorPanel.hue"
            width: parent.width
            height: 16
            GradientSwatch {
                anchors.fill: parent
                anchors.topMargin: 3
                anchors.bottomMargin: 3
                radius: 5
                angle: 90
                colors: ["#ff0000", "#ffff00", "#00ff00", "#00ffff", "#0000ff", "#ff00ff", "#ff0000"]
            }
            MouseArea {
                anchors.fill: parent
                preventStealing: true
                function pick(mouse: var): void {
                    panel.bridge.setHsv(mouse.x / width, panel.bridge.saturation, panel.bridge.brightness);
                }
                onPressed: mouse => pick(mouse)
                onPositionChanged: mouse => pick(mouse)
            }
            Rectangle {
                x: panel.bridge.hue * (parent.width - 16)
                width: 16
                height: 16
                radius: 8
                color: panel.pureHue
                border.width: 2
                border.color: "#ffffff"
                Rectangle {
                    anchors.fill: parent
                    anchors.margins: -1
                    radius: 9
                    color: "transparent"
                    border.color: "#60000000"
                }
            }
        }
        Row {
            width: parent.width
            spacing: 8
            GradientSwatch {
                width: 32
                height: 32
                radius: Theme.radius
                colors: [panel.bridge.color]
                outline: Theme.outline
            }
            T.TextField {
                id: hex
                objectName: "colorPanel.hex"
                width: parent.width - 40
                height: 32
                leftPadding: 10
                rightPadding: 10
                verticalAlignment: TextInput.AlignVCenter
                text: panel.bridge.color.toString().slice(1).toUpperCase()
                color: Theme.text
                selectionColor: Theme.accent
                selectedTextColor: Theme.accentText
                selectByMouse: true
                maximumLength: 7
                font.family: Theme.monospacedFamily
                font.pixelSize: 12
                validator: RegularExpressionValidator { regularExpression: /#?[0-9a-fA-F]{6}/ }
                Accessible.name: "Hex"
                onEditingFinished: panel.bridge.setColor("#" + text.replace("#", ""))
                onActiveFocusChanged: if (activeFocus) selectAll()
                background: Rectangle {
                    radius: Theme.radius
                    color: Theme.fill
                    border.width: hex.activeFocus ? 2 : 0
                    border.color: Theme.accent
                }
            }
        }
        Grid {
            id: grid
            width: parent.width
            columns: 8
            spacing: 6
            Repeater {
                model: ["#ffffff", "#c9ccd3", "#6b6f78", "#1a1a1a", "#e5484d", "#f76b15", "#ffc53d", "#46a758",
                        "#12a594", "#00a2c7", "#3d6df2", "#6e56cf", "#ab4aba", "#e93d82", "#8d6e58", "#0d2b45"]
                delegate: T.AbstractButton {
                    id: swatch
                    required property string modelData
                    width: (grid.width - 7 * grid.spacing) / 8
                    height: width
                    hoverEnabled: true
                    Accessible.name: modelData
                    Accessible.role: Accessible.Button
                    onClicked: panel.bridge.setColor(modelData)
                    background: GradientSwatch {
                        radius: 6
                        colors: [swatch.modelData]
                        outline: swatch.hovered ? Theme.text : Theme.outline
                    }
                }
            }
        }
    }
}
