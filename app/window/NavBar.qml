import QtQuick
import Quillo.Kit as Kit

// The navigation bar: an opaque bar with the top screen's title and its buttons.
Rectangle {
    id: bar

    property string title
    property string leftButton
    property string rightButton
    property color titleColor: "white"

    signal leftButtonTapped()
    signal rightButtonTapped()

    implicitHeight: Kit.Framr.navBarHei + 8

    Text {
        anchors.centerIn: parent
        width: parent.width - 2 * 64
        horizontalAlignment: Text.AlignHCenter
        text: bar.title
        elide: Text.ElideRight
        font.pixelSize: 19
        font.bold: true
        color: bar.titleColor
        Accessible.role: Accessible.TitleBar
    }

    Kit.BarButton {
        objectName: "leftBarButton"
        anchors.left: parent.left
        anchors.leftMargin: 16
        anchors.verticalCenter: parent.verticalCenter
        visible: bar.leftButton !== ""
        image: bar.leftButton
        color: bar.titleColor
        accessibleName: bar.leftButton === "formenu" ? qsTr("Menu") : qsTr("Back")
        onClicked: bar.leftButtonTapped()
    }

    Kit.BarButton {
        objectName: "rightBarButton"
        anchors.right: parent.right
        anchors.rightMargin: 16
        anchors.verticalCenter: parent.verticalCenter
        visible: bar.rightButton !== ""
        image: bar.rightButton
        color: bar.titleColor
        onClicked: bar.rightButtonTapped()
    }
}
