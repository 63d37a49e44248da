import QtQuick

// The navigation bar: an opaque bar with the top screen's title and its left button.
Rectangle {
    id: bar

    property string title
    property string leftButton
    property color titleColor: "white"

    signal leftButtonTapped()

    implicitHeight: 52

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

    BarButton {
        objectName: "leftBarButton"
        anchors.left: parent.left
        anchors.leftMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        visible: bar.leftButton !== ""
        iconName: bar.leftButton
        tint: bar.titleColor
        Accessible.name: bar.leftButton === "formenu" ? qsTr("Menu") : qsTr("Back")
        onClicked: bar.leftButtonTapped()
    }
}
