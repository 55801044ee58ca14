import QtQuick
import Framora.Controls

/// A control's caption.
Text {
    color: Theme.secondaryText
    font.family: Theme.fontFamily
    font.pixelSize: 12
    // A long word of another language rather shrinks a little than loses its end.
    fontSizeMode: Text.HorizontalFit
    minimumPixelSize: 10
    elide: Text.ElideRight
    verticalAlignment: Text.AlignVCenter
}
