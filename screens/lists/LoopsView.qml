import QtQuick
import QtQuick.Controls.Basic
import Quillo.Lists

// The loops list: folder rows that open and close, and under an open folder
// one row per loop with its play button, name, author and the colours of its
// eight instruments.
StackScreen {
    id: view

    title: controller.title
    typeOfItems: controller.typeOfItems
    leftBarButton: "formenu"
    Accessible.name: title

    // The common cell height, until the layout functions give it.
    readonly property real rowHeight: 60

    onLeftBarButtonTapped: controller.menuButtonTapped()
    StackView.onActivating: controller.setItemsAndReloadTable()
    StackView.onDeactivating: controller.stopPlaying()

    LoopsTVC {
        id: controller
        onMenuRequested: view.menuRequested()
    }

    Rectangle {
        anchors.fill: parent
        color: Colorer.backgColor
    }

    ListView {
        id: table
        objectName: "loopsTable"
        anchors.fill: parent
        model: controller.rows
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        ScrollIndicator.vertical: ScrollIndicator {}

        delegate: ItemDelegate {
            id: row

            required property int index
            required property bool isFolder
            required property string name
            required property string author
            required property bool opened
            required property int itemCount
            required property bool playing
            required property var tileColors

            width: ListView.view.width
            height: view.rowHeight
            padding: 0
            Accessible.name: name
            onClicked: controller.didSelectRow(index)

            background: Rectangle {
                color: row.pressed ? Qt.rgba(Colorer.lightBlueColor.r, Colorer.lightBlueColor.g,
                                             Colorer.lightBlueColor.b, 0.25)
                                   : Colorer.backgColor
            }

            contentItem: Item {
                // Folder row: a disclosure triangle and the folder's name.
                Item {
                    visible: row.isFolder
                    anchors.fill: parent

                    Text {
                        id: triangle
                        anchors.left: parent.left
                        anchors.leftMargin: 20
                        anchors.verticalCenter: parent.verticalCenter
                        text: "\u25B6"
                        font.pixelSize: 13
                        color: Colorer.mainColor
                        rotation: row.opened ? 90 : 0
                        Behavior on rotation { NumberAnimation { duration: 150 } }
                    }
                    Text {
                        anchors.left: triangle.right
                        anchors.leftMargin: 14
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
                        onClicked: controller.playItemPressed(row.index)
                        contentItem: Glyph {
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
                            model: 8
                            Rectangle {
                                required property int index
                                width: 13
                                height: 13
                                radius: 4
                                color: index < row.tileColors.length ? row.tileColors[index]
                                                                     : Qt.rgba(Colorer.lightBlueColor.r, Colorer.lightBlueColor.g,
                                                                               Colorer.lightBlueColor.b, 0.22)
                            }
                        }
                    }
                }
            }
        }
    }
}
