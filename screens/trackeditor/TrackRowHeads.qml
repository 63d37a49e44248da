pragma ComponentBehavior: Bound
import QtQuick
import Quillo.Kit
import Quillo.LoopEditor
import Quillo.TrackEditor

// The column of row heads: each row's colour band with its volume, loop name
// and loop picture; a tap on a head opens the row. Below the rows, the
// add-row button while there are fewer than ten. It slides out of sight on a
// two-finger tap.
Item {
    id: heads

    required property OneTrackVC controller
    // Re-read on every edit, resize and slide.
    readonly property int layout: heads.controller.revision + Framr.revision
    readonly property rect frame: {
        heads.layout
        heads.controller.leftVOnscreen
        return heads.controller.leftViewFrame()
    }

    x: frame.x
    y: frame.y
    width: frame.width
    height: frame.height
    Behavior on x { NumberAnimation { duration: 300; easing.type: Easing.InOutQuad } }

    Rectangle { anchors.fill: parent; color: "white" }

    Repeater {
        model: heads.controller.rowCount
        delegate: Item {
            id: head
            required property int index
            readonly property bool marked: heads.layout < 0 ? false : heads.controller.isRowMarked(head.index)
            readonly property rect bg: heads.layout < 0 ? Qt.rect(0, 0, 0, 0) : heads.controller.headFrame(index)
            // One per place for as long as the screen lives, so never gone before this head.
            readonly property VolumeView volume: heads.controller.rowVolumeView(head.index)
            readonly property LoopView picture: heads.controller.rowLoopView(head.index)
            visible: !marked

            Rectangle {
                objectName: "rowHead" + head.index
                x: head.bg.x; y: head.bg.y; width: head.bg.width; height: head.bg.height
                radius: 6
                color: heads.layout < 0 ? "transparent" : heads.controller.rowColor(head.index)
                Accessible.role: Accessible.Button
                Accessible.name: title.text
                TapHandler { onTapped: heads.controller.trackLoopPressed(head.index) }
            }
            KitLabel {
                id: title
                readonly property rect f: heads.layout < 0 ? Qt.rect(0, 0, 0, 0) : heads.controller.titleFrame(head.index)
                x: f.x; y: f.y; width: f.width; height: f.height
                text: heads.layout < 0 ? "" : heads.controller.rowName(head.index)
                horizontalAlignment: Text.AlignLeft
                font.pixelSize: Math.max(Uier.minTextPixelSize, height * 0.3)
            }
            // The loop's picture, tiles of the row's colour shifted darker.
            LoopViewItem {
                objectName: "rowPicture" + head.index
                readonly property rect f: heads.layout < 0 ? Qt.rect(0, 0, 0, 0) : heads.controller.pictureFrame(head.index)
                loopView: head.picture
                x: f.x; y: f.y; width: f.width; height: f.height
            }
            // Placed here, so they follow the window's size.
            Binding {
                target: head.volume
                property: "initialFrame"
                value: heads.layout < 0 ? Qt.rect(0, 0, 0, 0) : heads.controller.volumeFrame(head.index)
            }
            Binding {
                target: head.volume
                property: "enlargedFrame"
                value: heads.layout < 0 ? Qt.rect(0, 0, 0, 0) : heads.controller.volumeEnlargedFrame()
            }
            LAAdjustViewItem {
                objectName: "rowVolume" + head.index
                adjuster: head.volume
                visible: !heads.controller.deleting
                z: 1
            }
            ImageButton {
                objectName: "rowTrash" + head.index
                readonly property rect f: heads.layout < 0 ? Qt.rect(0, 0, 0, 0) : heads.controller.trashFrame(head.index)
                visible: heads.controller.deleting
                x: f.x; y: f.y; width: f.width; height: f.height
                image: "cancelButton"
                color: Qt.rgba(Colorer.mainColor.r, Colorer.mainColor.g, Colorer.mainColor.b, 0.5)
                accessibleName: qsTr("Delete row")
                onClicked: heads.controller.trashButtonsPressed(head.index)
            }
        }
    }

    ImageButton {
        objectName: "newRowButton"
        readonly property rect f: heads.layout < 0 ? Qt.rect(0, 0, 0, 0) : heads.controller.newRowFrame()
        visible: heads.controller.canAddRow && !heads.controller.deleting
        x: f.x; y: f.y; width: f.width; height: f.height
        image: "addButton"
        accessibleName: qsTr("Add row")
        Behavior on y { NumberAnimation { duration: 300 } }
        onClicked: heads.controller.newLtPressed()
    }
}
