// Draws a SoundColorView over the whole window: 16 rows of 9 palette cells,
// the current colour bordered in the background colour. It grows from zero;
// a touch anywhere goes to the controller in window coordinates.
import QtQuick
import Quillo.Kit
import Quillo.Kit as Kit  // QtQuick has an Animator of its own
import Quillo.SoundEditor

Item {
    id: root

    required property SoundColorView view

    objectName: "soundColorView"
    readonly property real screenWidth: Framr.scrnWid
    readonly property real screenHeight: Framr.scrnHei
    readonly property real cellWidth: screenWidth / 9
    readonly property real cellHeight: screenHeight * 0.0625
    readonly property point origin: {
        Framr.revision
        return root.parent ? root.parent.mapFromItem(null, 0, 0) : Qt.point(0, 0)
    }

    x: origin.x
    y: origin.y
    width: screenWidth
    height: screenHeight
    z: 100
    transformOrigin: Item.Center
    Component.onCompleted: Kit.Animator.scaleFromZero(root)
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Colours")

    Repeater {
        // Empty once the chooser is gone (it removes itself after a pick).
        model: root.view ? 16 * 9 : 0
        Rectangle {
            required property int index
            readonly property int row: Math.floor(index / 9)
            readonly property int column: index % 9
            objectName: "colorCell" + index
            x: column * root.cellWidth
            y: row * root.cellHeight
            width: root.cellWidth
            height: root.cellHeight
            color: Colorer.colorForNumber(index)
            border.color: Colorer.backgColor
            border.width: root.view && index === root.view.colorNumBefore ? root.cellWidth * 0.1 : 0
            Accessible.role: Accessible.Button
            Accessible.name: qsTr("Colour %1").arg(index)
        }
    }

    TapHandler {
        onTapped: function (point) {
            const atWindow = root.mapToItem(null, point.position.x, point.position.y)
            if (root.view)
                root.view.touchAt(atWindow.x, atWindow.y, root.screenWidth, root.screenHeight)
        }
    }
}
