// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
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
    height: column.implicitHeight + 32
    radius: Theme.cardRadius
    color: Theme.surface
    outline: Theme.outline
    Accessible.role: Accessible.Pane
    Accessible.name: Strings.localized("color")
    Component.onCompleted: if (bridge.takesKeys) field.forceActiveFocus(Qt.TabFocusReason)

    SoftShadow { radius: panel.radius; strength: Theme.dark ? 2 : 1 }
    // Keeps clicks between the controls from reaching the canvas, and lets the panel be moved.
    MouseArea {
        anchors.fill: parent
        drag.target: panel.parent
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
        HueSlider {
            objectName: "colorPanel.hue"
            width: parent.width
            bridge: panel.bridge
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
        ChoiceGroup {
            id: choices

            readonly property var palette: ["#ffffff", "#c9ccd3", "#6b6f78", "#1a1a1a", "#e5484d", "#f76b15", "#ffc53d",
                                            "#46a758", "#12a594", "#00a2c7", "#3d6df2", "#6e56cf", "#ab4aba", "#e93d82",
                                            "#8d6e58", "#0d2b45"]

            width: parent.width
            implicitHeight: grid.implicitHeight + 4
            count: palette.length
            current: palette.indexOf(panel.bridge.color.toString())
            itemAt: index => swatches.itemAt(index)
            Grid {
                id: grid
                width: parent.width
                columns: 8
                spacing: 8
                Repeater {
                    id: swatches
                    model: choices.palette
                    delegate: T.RadioButton {
                        id: swatch
                        required property string modelData
                        required property int index
                        objectName: "colorPanel.swatch." + index
                        width: (grid.width - 7 * grid.spacing) / 8
                        height: width
                        hoverEnabled: true
                        focusPolicy: choices.stop === index ? Qt.TabFocus : Qt.NoFocus
                        Accessible.name: modelData
                        checked: choices.current === index
                        Accessible.onToggleAction: swatch.clicked()
                        Accessible.onPressAction: swatch.clicked()
                        onActiveFocusChanged: if (activeFocus) choices.entered(index)
                        onClicked: panel.bridge.setColor(modelData)
                        Keys.onReturnPressed: swatch.clicked()
                        Keys.onEnterPressed: swatch.clicked()
                        background: Item {
                            GradientSwatch {
                                anchors.fill: parent
                                radius: width / 2
                                colors: [swatch.modelData]
                                outline: Theme.swatchOutline
                            }
                            RoundedBox {
                                anchors.fill: parent
                                anchors.margins: -3
                                radius: width / 2
                                color: "transparent"
                                outlineWidth: 2
                                outline: choices.current === swatch.index ? Theme.accent : Theme.outline
                                visible: choices.current === swatch.index || swatch.hovered
                            }
                            FocusRing { radius: width / 2; shown: swatch.visualFocus }
                        }
                    }
                }
            }
        }
    }
}
