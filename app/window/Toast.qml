import QtQuick

// A short message over the bottom of the screen that fades away by itself.
Rectangle {
    id: toast

    property color textColor: "white"

    function show(text) {
        label.text = text;
        hide.restart();
        opacity = 1;
    }

    width: Math.min(parent ? parent.width - 40 : 300, label.implicitWidth + 36)
    height: label.implicitHeight + 22
    radius: height / 2
    opacity: 0
    visible: opacity > 0
    Behavior on opacity { NumberAnimation { duration: 200 } }

    Text {
        id: label
        anchors.centerIn: parent
        width: Math.min(implicitWidth, toast.width - 36)
        elide: Text.ElideMiddle
        font.pixelSize: 15
        font.bold: true
        color: toast.textColor
    }

    Timer {
        id: hide
        interval: 2600
        onTriggered: toast.opacity = 0
    }
}
