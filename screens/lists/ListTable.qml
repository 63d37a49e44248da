pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Quillo.Kit as Kit
import Quillo.Lists

// A library list's table: each folder's row with its triangle, icon, name
// and item count; under an open folder one row per item with its play
// button, name and author, and the loop's colour tiles, the sound's dot or
// the track's length. Rows swipe open to the buttons the controller lists.
ListView {
    id: table

    required property BaseTVC controller
    readonly property real rowHeight: Kit.Framr.heightForUsualCell

    model: controller.rows

    // Shows a row's swipe buttons on one side (0 left, 1 right), as a swipe would.
    function openSwipe(row, side) {
        const item = itemAtIndex(row) as SwipeDelegate
        if (item) item.swipe.open(side === 0 ? SwipeDelegate.Left : SwipeDelegate.Right)
    }
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    ScrollIndicator.vertical: ScrollIndicator {}

    // The keyboard moves the current row (Up, Down) and opens it (Return);
    // it is marked only while the keyboard is in use.
    property bool keyboardInUse: false
    focus: true
    keyNavigationEnabled: true
    highlightMoveDuration: 0
    Keys.onUpPressed: (event) => { table.keyboardInUse = true; event.accepted = false }
    Keys.onDownPressed: (event) => { table.keyboardInUse = true; event.accepted = false }
    Keys.onReturnPressed: if (table.currentIndex >= 0) table.controller.didSelectRow(table.currentIndex)

    // A deleted row slides out to the left, the rows under it close the gap,
    // and the rows of an opened folder fade in.
    remove: Transition {
        NumberAnimation { property: "x"; to: -table.width; duration: Kit.Animator.moveTime * 1000; easing.type: Easing.InQuad }
        NumberAnimation { property: "opacity"; to: 0; duration: Kit.Animator.moveTime * 1000 }
    }
    add: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Kit.Animator.moveTime * 1000 }
    }
    displaced: Transition {
        NumberAnimation { property: "y"; duration: Kit.Animator.moveTime * 1000; easing.type: Easing.InOutQuad }
        // A displacement that interrupts a fade must not leave the row half shown.
        NumberAnimation { property: "opacity"; to: 1; duration: Kit.Animator.moveTime * 1000 }
    }

    // One swipe button: a square of the row's height with the icon inset by
    // 10. The row takes the touches; it tells its buttons through the
    // attached SwipeDelegate signals.
    component SwipeButton: Rectangle {
        id: button
        property string image
        signal tapped()
        height: table.rowHeight
        width: table.rowHeight
        Accessible.role: Accessible.Button
        Accessible.name: Kit.Uier.meaningOf(image)
        color: image === "deleteRowButton" ? Kit.Colorer.redColor
             : Qt.rgba(Kit.Colorer.mainColor.r, Kit.Colorer.mainColor.g, Kit.Colorer.mainColor.b,
                       image === "copyRowButton" ? 0.8 : 1.0)
        opacity: SwipeDelegate.pressed ? 0.8 : 1.0
        SwipeDelegate.onClicked: button.tapped()
        Kit.TintedIcon {
            anchors.fill: parent
            anchors.margins: 10 + table.rowHeight * 0.1
            name: button.image
            color: Kit.Colorer.backgColor
        }
    }

    // What a row shows; it moves with the row while the row is swiped.
    component RowContent: Item {
        id: content
        property int index
        property bool isFolder
        property string name
        property string author
        property bool opened
        property int itemCount
        property bool playing
        property var tileColors
        property color dotColor
        property string detail
        // Folder row.
        Item {
            visible: content.isFolder
            anchors.fill: parent
            Text {
                readonly property rect frame: Kit.Framr.ffFolderCellTriangle
                x: frame.x; y: frame.y; width: frame.width; height: frame.height
                text: "\u25B6"
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
                font.pixelSize: frame.height
                color: Kit.Colorer.mainColor
                rotation: content.opened ? 90 : 0
                Behavior on rotation { NumberAnimation { duration: 150 } }
                Accessible.name: content.opened ? qsTr("Open") : qsTr("Closed")
            }
            Kit.TintedIcon {
                id: folderIcon
                readonly property rect frame: Kit.Framr.ffFolderCellFolderImg
                x: frame.x; y: frame.y; width: frame.width; height: frame.height
                name: "folderIcon"
                color: Kit.Colorer.mainColor
            }
            Text {
                readonly property rect frame: Kit.Framr.ffFolderCellName
                x: frame.x; y: frame.y; width: frame.width - count.width - 8; height: frame.height
                verticalAlignment: Text.AlignVCenter
                text: content.name
                elide: Text.ElideRight
                font.pixelSize: Math.round(table.rowHeight * 0.29)
                font.bold: true
                color: Kit.Colorer.darkGreyBlueColor
            }
            Text {
                id: count
                anchors.right: parent.right
                anchors.rightMargin: Kit.Framr.scrnWid * 0.05
                anchors.verticalCenter: parent.verticalCenter
                text: content.itemCount
                font.pixelSize: Math.round(table.rowHeight * 0.22)
                color: Kit.Colorer.grayColor
            }
        }

        // Item row.
        Item {
            visible: !content.isFolder
            anchors.fill: parent

            AbstractButton {
                id: play
                objectName: "playButton"
                readonly property rect frame: Kit.Framr.ffItemCellPlayButton
                x: frame.x; y: frame.y; width: frame.width; height: frame.height
                focusPolicy: Qt.NoFocus
                Accessible.name: content.playing ? qsTr("Stop") : qsTr("Play")
                onClicked: {
                    table.keyboardInUse = false
                    table.currentIndex = content.index
                    table.controller.playItemPressed(content.index)
                }
                background: Kit.TintedIcon {
                    name: content.playing ? "stopButton256" : "playButton256"
                    color: play.pressed ? Kit.Colorer.darkerColorForColor(Kit.Colorer.mainColor) : Kit.Colorer.mainColor
                    scale: play.pressed ? Kit.Uier.pressScale : 1.0
                }
                contentItem: Item {}
            }
            Text {
                readonly property rect frame: { Kit.Framr.revision; return Kit.Framr.ffItemCellNameOrAuthor(false) }
                x: frame.x; y: frame.y; width: frame.width; height: frame.height
                verticalAlignment: Text.AlignBottom
                text: content.name
                elide: Text.ElideRight
                font.pixelSize: Math.round(table.rowHeight * 0.26)
                font.bold: true
                color: content.playing ? Kit.Colorer.mainColor : Kit.Colorer.darkGreyBlueColor
            }
            Text {
                readonly property rect frame: { Kit.Framr.revision; return Kit.Framr.ffItemCellNameOrAuthor(true) }
                x: frame.x; y: frame.y; width: frame.width; height: frame.height
                verticalAlignment: Text.AlignTop
                text: content.author
                elide: Text.ElideRight
                font.pixelSize: Math.round(table.rowHeight * 0.2)
                color: Kit.Colorer.grayColor
            }

            // A loop's instruments: one tile per slot in its sound's colour.
            Repeater {
                model: content.tileColors
                Rectangle {
                    required property int index
                    required property color modelData
                    readonly property rect frame: { Kit.Framr.revision; return Kit.Framr.ffLoopCellColor(index) }
                    x: frame.x; y: frame.y; width: frame.width; height: frame.height
                    radius: width * 0.3
                    color: modelData.a > 0 ? modelData
                                           : Qt.rgba(Kit.Colorer.lightBlueColor.r, Kit.Colorer.lightBlueColor.g,
                                                     Kit.Colorer.lightBlueColor.b, 0.22)
                }
            }
            // A sound's colour.
            Rectangle {
                readonly property rect frame: Kit.Framr.ffSoundCellColor
                visible: content.dotColor.a > 0
                x: frame.x; y: frame.y; width: frame.width; height: frame.height
                radius: width / 2
                color: content.dotColor
            }
            // A track's length.
            Text {
                visible: content.detail.length > 0
                anchors.right: parent.right
                anchors.rightMargin: Kit.Framr.scrnWid * 0.06
                anchors.verticalCenter: parent.verticalCenter
                text: content.detail
                font.pixelSize: Math.round(table.rowHeight * 0.26)
                font.bold: true
                color: Kit.Colorer.mainColor
            }
        }
    }

    delegate: SwipeDelegate {
        id: row

        required property int index
        required property bool isFolder
        required property string name
        required property string author
        required property bool opened
        required property int itemCount
        required property bool playing
        required property var tileColors
        required property color dotColor
        required property string detail
        required property var rightButtons
        required property var leftButtons

        width: table.width
        height: table.rowHeight
        padding: 0
        focusPolicy: Qt.NoFocus  // the keyboard stays with the table
        Accessible.name: name
        swipe.enabled: rightButtons.length > 0 || leftButtons.length > 0
        swipe.transition: Transition { SmoothedAnimation { velocity: 3; easing.type: Easing.InOutCubic } }
        swipe.onLeftItemChanged: SwipeSides.adopt(row, swipe.leftItem)
        swipe.onRightItemChanged: SwipeSides.adopt(row, swipe.rightItem)

        onClicked: {
            table.keyboardInUse = false
            table.currentIndex = index
            if (swipe.position !== 0) swipe.close()
            else table.controller.didSelectRow(index)
        }

        function tapSwipeButton(side, buttonIndex, origin) {
            swipe.close()
            table.controller.swipeButtonTapped(index, buttonIndex, side, origin)
        }

        background: Rectangle {
            color: row.pressed || (table.keyboardInUse && row.ListView.isCurrentItem)
                   ? Kit.Colorer.veryLighterColorForColor(Kit.Colorer.lightBlueColor) : Kit.Colorer.backgColor
        }

        // Left-side buttons show when the row is swiped to the right, right-side ones the other way.
        swipe.left: Row {
            objectName: "leftButtons"
            height: row.height
            Repeater {
                model: row.leftButtons
                delegate: SwipeButton {
                    required property int index
                    required property string modelData
                    objectName: modelData
                    image: modelData
                    onTapped: row.tapSwipeButton(0, index, Qt.rect(0, 0, 0, 0))
                }
            }
        }
        swipe.right: Row {
            objectName: "rightButtons"
            height: row.height
            x: row.width - width
            Repeater {
                model: row.rightButtons
                delegate: SwipeButton {
                    required property int index
                    required property string modelData
                    objectName: modelData
                    image: modelData
                    onTapped: {
                        const f = Kit.Framr.ffFolderCellFolderImg
                        const icon = row.mapToItem(null, f.x, f.y, f.width, f.height)
                        row.tapSwipeButton(1, index, Qt.rect(icon.x, icon.y, icon.width, icon.height))
                    }
                }
            }
        }

        contentItem: RowContent {
            index: row.index
            isFolder: row.isFolder
            name: row.name
            author: row.author
            opened: row.opened
            itemCount: row.itemCount
            playing: row.playing
            tileColors: row.tileColors
            dotColor: row.dotColor
            detail: row.detail
        }
    }
}
