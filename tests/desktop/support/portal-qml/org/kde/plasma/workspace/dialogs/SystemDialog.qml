import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import QtQuick.Window 2.15

// What the portal's dialogs stand on in a Plasma session, whose own comes with the whole workspace. The first
// button from the left accepts, the second rejects; both are 160 x 40 at the window's bottom left corner.
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
}
