// Draws a SoundPhotoView over the window: the photo, the camera and gallery
// buttons, Cancel and Done. It opens with a border in the background colour
// that goes away after 0.3 s.
import QtQuick
import Quillo.Kit
import Quillo.Kit as Kit  // QtQuick has an Animator of its own
import Quillo.SoundEditor

Rectangle {
    id: root

    required property SoundPhotoView view
    required property color panelColor
    // Set by the host when the machine has no camera: the camera button says so.
    property bool cameraAvailable: true
    property string notice: ""

    readonly property real sw: Framr.scrnWid
    readonly property real sh: Framr.scrnHei
    readonly property point origin: {
        Framr.revision
        return root.parent ? root.parent.mapFromItem(null, 0, 0) : Qt.point(0, 0)
    }

    x: origin.x
    y: origin.y
    width: sw
    height: sh
    z: 100
    color: panelColor
    border.color: Colorer.backgColor
    border.width: 0.007 * sw
    Component.onCompleted: borderTimer.start()
    Timer { id: borderTimer; interval: Kit.Animator.moveTime * 1000; onTriggered: root.border.width = 0 }
    Accessible.role: Accessible.Dialog
    Accessible.name: qsTr("Photo")

    // Touches do not fall through to the panel below.
    TapHandler {}

    PhotoImage {
        objectName: "photo"
        x: Framr.ffSoundPhotoImage.x
        y: Framr.ffSoundPhotoImage.y
        width: Framr.ffSoundPhotoImage.width
        height: Framr.ffSoundPhotoImage.height
        image: root.view ? root.view.photo : null
        Accessible.role: Accessible.Graphic
        Accessible.name: qsTr("Photo")
    }
    ImageButton {
        objectName: "cameraButton"
        x: 0.18 * root.sw
        y: 0.68 * root.sh
        width: 0.22 * root.sw
        height: width
        image: "cameraButton"
        color: Colorer.backgColor
        opacity: root.cameraAvailable ? 1 : 0.45
        onClicked: if (root.view) root.view.cameraPressed()
    }
    ImageButton {
        objectName: "photoGalleryButton"
        x: 0.6 * root.sw
        y: 0.68 * root.sh
        width: 0.22 * root.sw
        height: width
        image: "photoGalleryButton"
        color: Colorer.backgColor
        onClicked: if (root.view) root.view.photoGalleryPressed()
    }
    KitLabel {
        objectName: "noticeLabel"
        x: 0.05 * root.sw
        y: 0.68 * root.sh + 0.24 * root.sw
        width: 0.9 * root.sw
        height: 0.035 * root.sh
        text: root.notice
        color: Colorer.backgColor
        visible: text.length > 0
    }
    ImageButton {
        objectName: "photoCancelButton"
        x: 0.04 * root.sw
        y: 0.035 * root.sh
        width: 0.12 * root.sw
        height: width
        image: "cancelButton"
        color: Colorer.backgColor
        onClicked: if (root.view) root.view.cancelPressed()
    }
    ImageButton {
        objectName: "photoDoneButton"
        x: 0.41 * root.sw
        y: 0.86 * root.sh
        width: 0.18 * root.sw
        height: width
        image: "okButton"
        accessibleName: qsTr("Done")
        color: Colorer.backgColor
        onClicked: if (root.view) root.view.donePressed()
    }
}
