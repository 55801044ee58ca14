import QtQuick
import Framora.Controls

/// The line between two rows of a section.
Rectangle {
    width: parent.width
    height: 1
    color: Theme.hairline
}
