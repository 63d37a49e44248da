pragma ComponentBehavior: Bound
import QtQuick
import Quillo.Kit
import Quillo.TrackEditor

// The horizontally scrolling area: the time line (square numbers from 1),
// one line of squares per row, the squares-number button after the last
// square, and the play marker. Taps go to the controller, which counts them
// and decides what they do.
Flickable {
    id: area

    required property OneTrackVC controller
    // Re-read on every edit, resize and slide.
    readonly property int layout: area.controller.revision + Framr.revision
    readonly property rect frame: {
        area.layout
        area.controller.leftVOnscreen
        return area.controller.scrollViewFrame()
    }

    x: frame.x
    y: frame.y
    width: frame.width
    height: frame.height
    clip: true
    flickableDirection: Flickable.HorizontalFlick
    boundsBehavior: Flickable.StopAtBounds
    contentWidth: area.layout < 0 ? 0 : area.controller.contentWidth()
    contentHeight: height
    Behavior on x { NumberAnimation { duration: 300; easing.type: Easing.InOutQuad } }
    Behavior on width { NumberAnimation { duration: 300; easing.type: Easing.InOutQuad } }

    onWidthChanged: area.controller.visibleWidth = area.width
    Component.onCompleted: area.controller.visibleWidth = area.width
    onContentXChanged: if (area.moving) area.controller.scrollX = area.contentX
    Connections {
        target: area.controller
        function onScrollXChanged() { if (!area.moving) area.contentX = area.controller.scrollX }
    }

    // Opaque, so the heads slid out underneath do not show through the squares.
    Rectangle {
        parent: area
        anchors.fill: parent
        z: -1
        color: "white"
    }

    Item {
        id: content
        objectName: "squaresContent"
        width: area.contentWidth
        height: area.height

        // The time line.
        Repeater {
            model: area.controller.squaresnum
            Rectangle {
                required property int index
                readonly property rect f: area.layout < 0 ? Qt.rect(0, 0, 0, 0) : area.controller.timescaleFrame(index)
                x: f.x; y: f.y; width: f.width; height: f.height
                radius: 4
                color: Colorer.backgColor
                KitLabel {
                    anchors.fill: parent
                    color: Colorer.mainColor
                    text: "%1".arg(parent.index + 1)
                }
            }
        }

        // One line of squares per row.
        Repeater {
            model: area.controller.rowCount
            Item {
                id: line
                required property int index
                readonly property bool marked: area.layout < 0 ? false : area.controller.isRowMarked(line.index)
                visible: !marked
                Repeater {
                    model: area.controller.squaresnum
                    Rectangle {
                        required property int index
                        readonly property rect f: area.layout < 0 ? Qt.rect(0, 0, 0, 0) : area.controller.squareFrame(line.index, index)
                        x: f.x; y: f.y; width: f.width; height: f.height
                        radius: 4
                        color: area.layout < 0 ? "transparent" : area.controller.squareColor(line.index, index)
                    }
                }
            }
        }

        ColorButton {
            objectName: "squaresNumButton"
            readonly property rect f: area.layout < 0 ? Qt.rect(0, 0, 0, 0) : area.controller.squaresNumFrame()
            x: f.x; y: f.y; width: f.width; height: f.height
            scale: area.controller.deleting ? 0 : 1
            text: "%1".arg(area.controller.squaresnum)
            accessibleName: qsTr("Number of squares")
            onClicked: area.controller.trackSquaresPressed()
        }

        Rectangle {
            objectName: "playMarker"
            readonly property rect f: area.controller.playingSq < 0 || area.controller.playingTact < 0 ? Qt.rect(0, 0, 0, 0) : area.controller.markerFrame()
            x: f.x; y: f.y; width: f.width; height: f.height
            color: Qt.rgba(Colorer.backgColor.r, Colorer.backgColor.g, Colorer.backgColor.b, 0.5)
        }

        TapHandler {
            objectName: "squaresTaps"
            acceptedButtons: Qt.LeftButton
            onTapped: (eventPoint) => area.controller.tapAt(eventPoint.position.x, eventPoint.position.y)
        }
    }
}
