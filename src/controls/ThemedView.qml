import QtQuick
import Framora.Controls

/// The root of a window: it takes the desktop's appearance in, by the names of `lookOf()`, for every control.
Item {
    id: root

    property bool dark: false
    property color accent: "#3d6df2"
    property bool reducedMotion: false

    Binding { target: Theme; property: "dark"; value: root.dark }
    Binding { target: Theme; property: "accent"; value: root.accent }
    Binding { target: Theme; property: "reducedMotion"; value: root.reducedMotion }

    HoverHandler {
        onPointChanged: Pointer.position = point.scenePosition
        onHoveredChanged: Pointer.inside = hovered
    }
}
