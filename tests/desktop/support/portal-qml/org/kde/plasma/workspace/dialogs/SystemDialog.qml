import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import QtQuick.Window 2.15

// What the portal's dialogs stand on in a Plasma session, whose own comes with the whole workspace. Along the
// bottom stand buttons of 160 x 40: from the left one that accepts and one that rejects, from the right the
// dialog's actions.
Window {
    id: dialog

    property string mainText
    property string subtitle
    property string iconName
    property list<QtObject> actions
    default property Item mainItem
    property int standardButtons: DialogButtonBox.Ok | DialogButtonBox.Cancel
    property bool acceptable: true
    property int layout: Qt.Horizontal
    property bool accepted: false
    readonly property alias dialogButtonBox: buttons

    signal accept
    signal reject

    function present() {
        show();
    }

    width: 640
    height: 400
    color: "#303030"
    onMainItemChanged: if (mainItem)
        mainItem.parent = room
    onAccept: {
        accepted = true;
        close();
    }
    onReject: close()
    onVisibleChanged: if (!visible && !accepted)
        reject()

    Item {
        id: room

        anchors.fill: parent
        anchors.bottomMargin: 40
    }

    DialogButtonBox {
        id: buttons

        anchors.left: parent.left
        anchors.bottom: parent.bottom
        width: 320
        height: 40
        spacing: 0
        padding: 0
        standardButtons: dialog.standardButtons
        onAccepted: dialog.accept()
        onRejected: dialog.reject()
    }

    Row {
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        layoutDirection: Qt.RightToLeft

        Repeater {
            model: dialog.actions

            Button {
                width: 160
                height: 40
                text: modelData.text
                enabled: modelData.enabled
                onClicked: modelData.trigger()
            }
        }
    }
}
