import QtQuick

/// The round mark of a colour in the panel, to be seen on every colour.
Rectangle {
    width: 16
    height: 16
    radius: 8
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
