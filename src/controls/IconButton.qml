// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
import Framora.Controls

/// A square button that shows a symbol; `bordered` gives it a ground of its own at rest.
T.AbstractButton {
    id: control

    required property string symbol
    property string help: ""
    property string shortcut: "" ///< Shown with the help.
    property bool bordered: false
    /// For a button that stands on the window's ground.
    property bool raised: false
    property int symbolSize: 18
    property color tint: Theme.text

    implicitWidth: 32
    implicitHeight: 32
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    opacity: enabled ? 1 : 0.4
    Accessible.name: text !== "" ? text : help
    Keys.onReturnPressed: control.clicked()
    Keys.onEnterPressed: control.clicked()
    Accessible.role: Accessible.Button
    Accessible.onPressAction: control.clicked()

    contentItem: Item {
        SymbolIcon {
            anchors.centerIn: parent
            symbol: control.symbol
            size: control.symbolSize
            color: control.tint
        }
    }
    background: RoundedBox {
        radius: Theme.radius
        color: control.pressed ? Theme.pressedFill
             : control.hovered && control.enabled ? Theme.hoverFill
             : control.raised ? Theme.card
             : control.bordered ? Theme.fill : "transparent"
        outline: control.raised && !Theme.dark ? Theme.outline : "transparent"
        Behavior on color { ColorAnimation { duration: Theme.shortMotion } }
        FocusRing { shown: control.visualFocus }
    }

    HoverHandler { id: hover }
    Loader {
        active: (hover.hovered || control.visualFocus) && control.help !== ""
        sourceComponent: HelpTip {
            parent: control
            text: control.help
            shortcut: control.shortcut
            visible: !control.pressed
        }
    }
}
