pragma Singleton
import QtQuick

/// Where the pointer stood in its window before the movement that a control below it is told of; the window's root view
/// sets it.
QtObject {
    property point position
}
