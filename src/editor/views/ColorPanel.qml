// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Editor

/// The one colour panel. It stays open beside the sidebar while other controls are used, and reports every change
/// as it happens.
RoundedBox {
    id: panel

    required property ColorPanelBridge bridge

    /// A part of the colour in whole numbers, out of `whole`.
    function percentOf(text: string, whole: int): real {
        const typed = SliderValueText.parse(text, "");
        return isNaN(typed) ? NaN : Math.max(0, Math.min(whole, typed)) / whole;
    }
    function setPart(hue: real, saturation: real, brightness: real): void {
        if (!isNaN(hue + saturation + brightness))
            bridge.setHsv(hue, saturation, brightness);
    }

    objectName: "colorPanel"
    width: 264
    height: column.implicitHeight + 28
    radius: Theme.cardRadius
    color: Theme.surface
    outline: Theme.outline
    Accessible.role: Accessible.Pane
    Accessible.name: Strings.localized("color")
    Component.onCompleted: if (bridge.takesKeys) field.forceActiveFocus(Qt.TabFocusReason)

    NumberAnimation on opacity { from: 0; to: 1; duration: Theme.shortMotion }
    SoftShadow { radius: panel.radius; strength: Theme.dark ? 2 : 1 }
    // Keeps clicks between the controls from reaching the canvas, and lets the panel be moved.
    MouseArea {
        anchors.fill: parent
        drag.target: panel.parent
        drag.minimumX: 0
        drag.maximumX: Math.max(0, panel.Window.width - panel.width)
        drag.minimumY: 0
        drag.maximumY: Math.max(0, panel.Window.height - panel.height)
        onWheel: wheel => wheel.accepted = true
    }
    Column {
        id: column
        x: 16
        y: 12
        width: parent.width - 32
        spacing: 12

        Item {
            width: parent.width
            height: 28
            Text {
                anchors.verticalCenter: parent.verticalCenter
                text: Strings.localized("color")
                color: Theme.text
                font.family: Theme.fontFamily
                font.pixelSize: 13
                font.weight: Font.DemiBold
            }
            IconButton {
                objectName: "colorPanel.close"
                anchors.right: parent.right
                anchors.rightMargin: -6
                width: 28
                height: 28
                symbol: "xmark"
                symbolSize: 14
                tint: Theme.secondaryText
                text: Strings.localized("window.close")
                help: Strings.localized("window.close")
                onClicked: panel.bridge.close()
            }
        }
        ColorField {
            id: field
            objectName: "colorPanel.field"
            width: parent.width
            bridge: panel.bridge
        }
        Item {
            width: parent.width
            height: 32
            EyedropperButton {
                id: eyedropper
                objectName: "colorPanel.eyedropper"
                bridge: panel.bridge
            }
            HueSlider {
                objectName: "colorPanel.hue"
                anchors.verticalCenter: parent.verticalCenter
                anchors.left: eyedropper.right
                anchors.leftMargin: 12
                anchors.right: parent.right
                bridge: panel.bridge
            }
        }
        Row {
            width: parent.width
            spacing: 6
            ColorNumber {
                objectName: "colorPanel.hex"
                width: parent.width - 3 * 50
                caption: "Hex"
                accessibleName: "Hex"
                maximumLength: 7
                shown: panel.bridge.color.toString().slice(1).toUpperCase()
                onTyped: text => {
                    const digits = text.replace("#", "");
                    if (/^[0-9a-fA-F]{6}$/.test(digits))
                        panel.bridge.setColor("#" + digits);
                    else if (/^[0-9a-fA-F]{3}$/.test(digits))
                        panel.bridge.setColor("#" + digits.replace(/./g, "$&$&"));
                }
            }
            ColorNumber {
                objectName: "colorPanel.h"
                width: 44
                caption: "H"
                accessibleName: Strings.localized("hue")
                shown: Math.round(panel.bridge.hue * 360)
                onTyped: text => panel.setPart(panel.percentOf(text, 360), panel.bridge.saturation, panel.bridge.brightness)
                onStepped: steps => panel.bridge.setHsv((Number(shown) + steps) / 360, panel.bridge.saturation,
                                                        panel.bridge.brightness)
            }
            ColorNumber {
                objectName: "colorPanel.s"
                width: 44
                caption: "S"
                accessibleName: Strings.localized("saturation")
                shown: Math.round(panel.bridge.saturation * 100)
                onTyped: text => panel.setPart(panel.bridge.hue, panel.percentOf(text, 100), panel.bridge.brightness)
                onStepped: steps => panel.bridge.setHsv(panel.bridge.hue, (Number(shown) + steps) / 100,
                                                        panel.bridge.brightness)
            }
            ColorNumber {
                objectName: "colorPanel.b"
                width: 44
                caption: "B"
                accessibleName: Strings.localized("brightness")
                shown: Math.round(panel.bridge.brightness * 100)
                onTyped: text => panel.setPart(panel.bridge.hue, panel.bridge.saturation, panel.percentOf(text, 100))
                onStepped: steps => panel.bridge.setHsv(panel.bridge.hue, panel.bridge.saturation,
                                                        (Number(shown) + steps) / 100)
            }
        }
        ColorSwatches {
            objectName: "colorPanel.swatch"
            width: parent.width
            bridge: panel.bridge
            colors: ["#ffffff", "#c9ccd3", "#6b6f78", "#1a1a1a", "#e5484d", "#f76b15", "#ffc53d", "#46a758", "#12a594",
                     "#00a2c7", "#3d6df2", "#6e56cf", "#ab4aba", "#e93d82", "#8d6e58", "#0d2b45"]
        }
        Column {
            width: parent.width
            spacing: 8
            visible: panel.bridge.recentColors.length > 0
            Label {
                objectName: "colorPanel.recent.caption"
                width: parent.width
                text: Strings.localized("recent.colors")
                font.pixelSize: 11
            }
            ColorSwatches {
                objectName: "colorPanel.recent"
                width: parent.width
                bridge: panel.bridge
                label: Strings.localized("recent.colors")
                colors: panel.bridge.recentColors
            }
        }
    }
}
