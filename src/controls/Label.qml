import QtQuick
import Framora.Controls

/// A control's caption.
Text {
    color: Theme.secondaryText
    font.family: Theme.fontFamily
    font.pixelSize: 12
    elide: Text.ElideRight
    verticalAlignment: Text.AlignVCenter
}
