// Draws a panel growing into the full-screen circle, with its Cancel and
// Done buttons popping in at the bottom panel's outer places.
import QtQuick
import Quillo.Kit
import Quillo.Kit as Kit  // QtQuick has an Animator of its own

AnimatedViewItem {
    id: root

    required property LAAnimatedView panel
    property color buttonColor: Colorer.backgColor
    default property alias content: contentArea.data

    view: panel
    clip: true

    // Re-read on every re-layout of the window.
    readonly property rect cancelPlace: { Framr.revision; return panel.cancelButtonPlace }
    readonly property rect donePlace: { Framr.revision; return panel.doneButtonPlace }

    // How far the view has grown towards its frame: the content shows in the second half.
    readonly property real grown: panel.frame.width > 0 ? width / panel.frame.width : 1

    // Panel content, laid out in screen coordinates, stays put on screen while the circle grows.
    Item {
        id: contentArea
        opacity: Math.max(0, Math.min(1, (root.grown - 0.5) * 2))
        x: root.width / 2 - Framr.scrnWid / 2
        y: root.height / 2 - Framr.scrnHei / 2
        width: Framr.scrnWid
        height: Framr.scrnHei
    }

    ImageButton {
        id: cancel
        visible: root.panel.hasCancelButton
        image: "cancelButton"
        accessibleName: qsTr("Cancel")
        color: root.buttonColor
        x: root.width / 2 + root.cancelPlace.x
        y: root.height / 2 + root.cancelPlace.y
        width: root.cancelPlace.width
        height: root.cancelPlace.height
        onVisibleChanged: if (visible) Kit.Animator.scaleFromZero(cancel)
        onClicked: root.panel.cancelPressed()
    }

    ImageButton {
        id: done
        visible: root.panel.hasDoneButton
        image: "okButton"
        accessibleName: qsTr("Done")
        color: root.buttonColor
        x: root.width / 2 + root.donePlace.x
        y: root.height / 2 + root.donePlace.y
        width: root.donePlace.width
        height: root.donePlace.height
        onVisibleChanged: if (visible) Kit.Animator.scaleFromZero(done)
        onClicked: root.panel.donePressed()
    }
}
