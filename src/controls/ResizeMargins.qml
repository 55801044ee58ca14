// qmllint disable unqualified
import QtQuick

/// Thin margins along a frameless window's edges that resize it.
Item {
    id: margins

    readonly property int thickness: 5
    readonly property bool active: Window.window && Window.window.visibility === Window.Windowed

    visible: active

    Repeater {
        model: [
            { edges: Qt.LeftEdge, shape: Qt.SizeHorCursor },
            { edges: Qt.RightEdge, shape: Qt.SizeHorCursor },
            { edges: Qt.TopEdge, shape: Qt.SizeVerCursor },
            { edges: Qt.BottomEdge, shape: Qt.SizeVerCursor },
            { edges: Qt.LeftEdge | Qt.TopEdge, shape: Qt.SizeFDiagCursor },
            { edges: Qt.RightEdge | Qt.BottomEdge, shape: Qt.SizeFDiagCursor },
            { edges: Qt.RightEdge | Qt.TopEdge, shape: Qt.SizeBDiagCursor },
            { edges: Qt.LeftEdge | Qt.BottomEdge, shape: Qt.SizeBDiagCursor }
        ]
        delegate: MouseArea {
            required property var modelData
            readonly property int edges: modelData.edges
            readonly property bool corner: (edges & (Qt.LeftEdge | Qt.RightEdge)) && (edges & (Qt.TopEdge | Qt.BottomEdge))

            x: edges & Qt.RightEdge ? margins.width - width : 0
            y: edges & Qt.BottomEdge ? margins.height - height : 0
            width: edges & (Qt.LeftEdge | Qt.RightEdge) ? margins.thickness * (corner ? 2 : 1) : margins.width
            height: edges & (Qt.TopEdge | Qt.BottomEdge) ? margins.thickness * (corner ? 2 : 1) : margins.height
            cursorShape: modelData.shape
            onPressed: Window.window.startSystemResize(edges)
        }
    }
}
