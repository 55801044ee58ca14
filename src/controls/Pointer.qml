pragma Singleton
import QtQuick

/// Where the pointer stood before the movement that a control below it is told of; the window's root view sets it.
QtObject {
    property point position
    /// Whether it was in the window then.
    property bool inside: false
}
