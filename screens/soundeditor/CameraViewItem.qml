// The camera, full window: the live picture and a shutter button. A capture
// hands the still to the host and closes.
import QtQuick
import Quillo.Kit
import Quillo.SoundEditor

Rectangle {
    id: root

    required property PhotoCamera camera
    signal closed()

    readonly property point origin: {
        Framr.revision
        return root.parent ? root.parent.mapFromItem(null, 0, 0) : Qt.point(0, 0)
    }
    x: origin.x
    y: origin.y
    width: Framr.scrnWid
    height: Framr.scrnHei
    z: 200
    color: "black"
    Accessible.role: Accessible.Dialog
    Accessible.name: qsTr("Camera")
    Component.onCompleted: camera.start()
    Component.onDestruction: camera.stop()

    TapHandler {}
    PhotoImage {
        anchors.centerIn: parent
        width: Math.min(parent.width, parent.height)
        height: width
        image: root.camera.preview
    }
    KitLabel {
        anchors.centerIn: parent
        width: parent.width * 0.9
        height: parent.height * 0.04
        text: root.camera.errorText
        color: Colorer.backgColor
        visible: text.length > 0
    }
    ImageButton {
        objectName: "cameraCancelButton"
        x: 0.04 * root.width
        y: 0.035 * root.height
        width: 0.12 * root.width
        height: width
        image: "cancelButton"
        color: Colorer.backgColor
        onClicked: root.closed()
    }
    Rectangle {
        objectName: "shutterButton"
        width: 0.2 * root.width
        height: width
        radius: width / 2
        x: (root.width - width) / 2
        y: 0.85 * root.height
        color: Colorer.backgColor
        border.color: Colorer.darkGreyBlueColor
        border.width: width * 0.08
        Accessible.role: Accessible.Button
        Accessible.name: qsTr("Take photo")
        TapHandler { onTapped: root.camera.capture() }
    }
}
