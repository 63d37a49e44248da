import QtQuick
import QtQuick.Controls.Basic
import Quillo.Lists

// The loops list's table: a folder row with a disclosure triangle, the
// folder's name and how many loops it holds; under an open folder, one row
// per loop with its play button, name, author and its instruments' colours.
ListView {
    id: table

    required property LoopsTVC controller
    // The common cell height, until the layout functions give it.
    property real rowHeight: 60

    model: controller.rows
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    ScrollIndicator.vertical: ScrollIndicator {}

    delegate: AbstractButton {
        id: row

        required property int index
        required property bool isFolder
        required property string name
        required property string author
        required property bool opened
        required property int itemCount
        required property bool playing
        required property var tileColors
        readonly property LoopsTable table: ListView.view as LoopsTable

        width: table.width
        height: table.rowHeight
        Accessible.name: name
        onClicked: table.controller.didSelectRow(index)

        background: Rectangle {
            color: row.pressed ? Qt.rgba(Colorer.lightBlueColor.r, Colorer.lightBlueColor.g,
                                         Colorer.lightBlueColor.b, 0.25)
                               : Colorer.backgColor
        }

        // Folder row.
        Item {
            visible: row.isFolder
            anchors.fill: parent

            Glyph {
                id: triangle
                anchors.left: parent.left
                anchors.leftMargin: 18
                anchors.verticalCenter: parent.verticalCenter
                width: 16
                height: 16
                name: "disclosure"
                color: Colorer.mainColor
                rotation: row.opened ? 90 : 0
                Behavior on rotation { NumberAnimation { duration: 150 } }
            }
            Text {
                anchors.left: triangle.right
                anchors.leftMargin: 12
                anchors.right: count.left
                anchors.rightMargin: 12
                anchors.verticalCenter: parent.verticalCenter
                text: row.name
                elide: Text.ElideRight
                font.pixelSize: 19
                font.bold: true
                color: Colorer.darkGreyBlueColor
            }
            Text {
                id: count
                anchors.right: parent.right
                anchors.rightMargin: 20
                anchors.verticalCenter: parent.verticalCenter
                text: row.itemCount
                font.pixelSize: 15
                color: Colorer.grayColor
            }
        }

        // Loop row.
        Item {
            visible: !row.isFolder
            anchors.fill: parent

            AbstractButton {
                id: play
                objectName: "playButton"
                anchors.left: parent.left
                anchors.leftMargin: 22
                anchors.verticalCenter: parent.verticalCenter
                width: 36
                height: 36
                Accessible.name: row.playing ? qsTr("Stop") : qsTr("Play")
                onClicked: row.table.controller.playItemPressed(row.index)

                Glyph {
                    anchors.fill: parent
                    name: row.playing ? "stopButton256" : "playButton256"
                    color: play.pressed ? Colorer.darkerColorForColor(Colorer.mainColor) : Colorer.mainColor
                    scale: play.pressed ? 0.8 : 1.0
                }
            }

            Column {
                anchors.left: play.right
                anchors.leftMargin: 14
                anchors.right: tiles.left
                anchors.rightMargin: 12
                anchors.verticalCenter: parent.verticalCenter
                spacing: 2
                Text {
                    width: parent.width
                    text: row.name
                    elide: Text.ElideRight
                    font.pixelSize: 17
                    font.bold: true
                    color: row.playing ? Colorer.mainColor : Colorer.darkGreyBlueColor
                }
                Text {
                    width: parent.width
                    text: row.author
                    elide: Text.ElideRight
                    font.pixelSize: 13
                    color: Colorer.grayColor
                }
            }

            // The loop's instruments: one tile per slot, in its sound's colour.
            Grid {
                id: tiles
                anchors.right: parent.right
                anchors.rightMargin: 18
                anchors.verticalCenter: parent.verticalCenter
                columns: 4
                spacing: 4
                Repeater {
                    model: row.tileColors
                    Rectangle {
                        required property color modelData
                        width: 13
                        height: 13
                        radius: 4
                        // An empty slot shows as a faint tile.
                        color: modelData.a > 0 ? modelData
                                               : Qt.rgba(Colorer.lightBlueColor.r, Colorer.lightBlueColor.g,
                                                         Colorer.lightBlueColor.b, 0.22)
                    }
                }
            }
        }
    }
}
