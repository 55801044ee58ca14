import QtQuick
import QtQuick.Templates as T
import Framora.Controls

/// One of several choices, of any look; whoever shows it says by `checked` whether it is the chosen one.
T.RadioButton {
    id: control

    hoverEnabled: true
    Accessible.onToggleAction: control.clicked()
    Accessible.onPressAction: control.clicked()
    Keys.forwardTo: ReleaseKeys { id: keys; button: control; onStruck: control.clicked() }
    down: keys.heldKey ? true : undefined
}
