import QtQuick

/// The round mark of a colour in the panel, to be seen on every colour.
RoundedBox {
    width: 16
    height: 16
    radius: 8
    outlineWidth: 2
    outline: "#ffffff"

    RoundedBox {
        anchors.fill: parent
        anchors.margins: -1
        radius: 9
        color: "transparent"
        outline: "#60000000"
    }
}
