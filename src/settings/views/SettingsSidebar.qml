// qmllint disable unqualified
import QtQuick
import Framora.Controls
import Framora.Settings

/// The window's entries, one below the other.
Rectangle {
    id: sidebar

    required property SettingsSession session

    color: Theme.surface

    Column {
        x: 12
        y: Theme.headerHeight + 4
        width: parent.width - 24
        spacing: 4

        Repeater {
            model: sidebar.session.tabs
            delegate: ChoiceButton {
                id: entry

                required property var modelData
                readonly property bool current: modelData.value === sidebar.session.selectedTab
                readonly property color ink: current ? Theme.text : Theme.secondaryText

                objectName: "tab." + modelData.name
                width: parent.width
                height: 36
                focusPolicy: Qt.TabFocus
                text: modelData.label
                checked: current
                Accessible.role: Accessible.RadioButton
                Accessible.name: text
                onClicked: {
                    sidebar.session.selectedTab = modelData.value;
                    // The user's click broke the binding.
                    checked = Qt.binding(() => current);
                }
                Keys.onUpPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
                Keys.onDownPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)

                contentItem: Item {
                    SymbolIcon {
                        x: 10
                        anchors.verticalCenter: parent.verticalCenter
                        symbol: entry.modelData.symbol
                        size: 18
                        color: entry.current ? Theme.accent : entry.ink
                    }
                    Text {
                        x: 38
                        width: parent.width - x - 8
                        anchors.verticalCenter: parent.verticalCenter
                        text: entry.text
                        color: entry.ink
                        elide: Text.ElideRight
                        font.family: Theme.fontFamily
                        font.pixelSize: 13
                        font.weight: entry.current ? Font.DemiBold : Font.Medium
                    }
                }
                background: RoundedBox {
                    radius: Theme.radius
                    color: entry.current ? Theme.accentTint
                         : entry.down ? Theme.pressedFill : entry.hovered ? Theme.hoverFill : "transparent"
                    FocusRing { shown: entry.visualFocus }
                }
            }
        }
    }
    Rectangle {
        anchors.right: parent.right
        width: 1
        height: parent.height
        color: Theme.hairline
    }
}
