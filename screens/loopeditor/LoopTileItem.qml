// One instrument tile: its sound's colour, shrinking while the sound sounds;
// in volume mode a volume adjuster, in photo mode the sound's photo; while
// deleting a cancel mark, and gone once marked.
pragma ComponentBehavior: Bound

import QtQuick
import Quillo.Kit
import Quillo.LoopEditor

Rectangle {
    id: root

    required property LoopTile tile
    required property rect frame
    property bool deleting: false
    property int displayMode: 0
    signal tapped()

    x: frame.x
    y: frame.y
    width: frame.width
    height: frame.height
    radius: Math.min(width, height) * 0.12
    color: tile.color
    visible: scale > 0.01
    scale: !tile.present || tile.marked ? 0 : (tile.sounding ? 0.75 : 1)  // the kit's sounding size
    Accessible.role: Accessible.Button
    Accessible.name: qsTr("Instrument %1").arg(tile.cell + 1)

    Behavior on x { NumberAnimation { duration: Animator.moveTime * 1000; easing.type: Easing.InOutQuad } }
    Behavior on y { NumberAnimation { duration: Animator.moveTime * 1000; easing.type: Easing.InOutQuad } }
    Behavior on scale { NumberAnimation { duration: Animator.choiceButtonTime * 1000 } }

    TapHandler {
        onTapped: root.tapped()
    }

    PhotoView {
        anchors.centerIn: parent
        width: Math.min(parent.width, parent.height) * 0.8
        height: width
        visible: root.displayMode === 2 && root.tile.photoSource !== ""
        source: root.tile.photoSource
    }

    // The tile's volume; its drags and taps reach the editor through the adjuster.
    Binding {
        target: root.tile.volumeView
        property: "initialFrame"
        value: {
            const side = Math.min(root.width, root.height) * 0.8;
            return Qt.rect((root.width - side) / 2, (root.height - side) / 2, side, side);
        }
    }
    Binding { target: root.tile.volumeView; property: "color"; value: root.tile.color }
    LAAdjustViewItem {
        adjuster: root.tile.volumeView
        visible: root.displayMode === 1
        enabled: visible
    }

    TintedIcon {
        anchors.centerIn: parent
        width: Math.min(parent.width, parent.height) * 0.45
        height: width
        visible: root.deleting
        name: "cancelButton"
        color: Colorer.veryDarkerColorForColor(root.tile.color)
    }
}
