// A loop at a glance: its instruments' tiles laid out by the layout functions
// for instrument i of n, each in its sound's colour, with the photo when shown.
// The tiles of instruments whose sound is sounding shrink to the sounding
// size until their note stops.
pragma ComponentBehavior: Bound

import QtQuick
import Quillo.Kit
import Quillo.LoopEditor

Item {
    id: root

    required property LoopView loopView
    property color backgroundColor: "transparent"

    Accessible.role: Accessible.Graphic
    Accessible.name: root.loopView.loopName

    Rectangle {
        anchors.fill: parent
        color: root.backgroundColor
    }

    Repeater {
        model: root.loopView.count
        delegate: Rectangle {
            id: tile
            required property int index
            readonly property rect place: Framr.revision >= 0
                ? Framr.ffExportLoopInstrVOnAll(Qt.size(root.width, root.height), index, root.loopView.count)
                : Qt.rect(0, 0, 0, 0)
            x: place.x
            y: place.y
            width: place.width
            height: place.height
            color: root.loopView.colors[index]
            radius: Math.min(width, height) * 0.12  // as the loop editor's tiles
            scale: (root.loopView.sounding & (1 << index)) !== 0 ? 0.75 : 1  // the kit's sounding size
            Behavior on scale { NumberAnimation { duration: Animator.choiceButtonTime * 1000 } }

            PhotoView {
                readonly property rect spot: Framr.ffExportPhotoOnInstr(Qt.size(tile.width, tile.height))
                x: spot.x
                y: spot.y
                width: spot.width
                height: spot.height
                visible: source !== ""
                source: root.loopView.photoSources[tile.index] ?? ""
            }
        }
    }
}
