import QtQuick
import QtQuick.Controls.Basic
import Quillo.Kit
import Quillo.TrackEditor

// An open row: the loop's name and picture (a tap opens the loop in the loop
// editor), the colour button with the colour chooser, and the loop picker.
Rectangle {
    id: panel

    property TrackLoopView rowView
    property bool choosingColor: false

    color: rowView ? rowView.color : Colorer.backgColor

    KitLabel {
        id: title
        x: 16; y: 8
        width: parent.width - 32
        height: 44
        text: panel.rowView ? panel.rowView.title : ""
    }

    // The loop's picture.
    Grid {
        id: picture
        objectName: "rowLoopPicture"
        readonly property real side: Math.min(panel.width * 0.5, panel.height * 0.3)
        x: (panel.width - side) / 2
        y: title.y + title.height + 8
        width: side; height: side
        columns: 2
        spacing: 3
        Accessible.role: Accessible.Button
        Accessible.name: qsTr("Open loop")
        Repeater {
            model: panel.rowView ? panel.rowView.tileColors.length : 0
            Rectangle {
                required property int index
                width: (picture.side - 3) / 2
                height: (picture.side - 9) / 4
                radius: 4
                color: panel.rowView.tileColors[index]
                scale: (panel.rowView.soundingTiles & (1 << index)) ? 0.75 : 1.0
                Behavior on scale { NumberAnimation { duration: 60 } }
            }
        }
        TapHandler { onTapped: if (panel.rowView) panel.rowView.openLoopPressed() }
    }

    ColorButton {
        objectName: "rowColorButton"
        x: picture.x + picture.width + 16
        y: picture.y + picture.height - height
        width: 48; height: 48
        baseColor: panel.rowView ? panel.rowView.buttonColor : Colorer.mainColor
        accessibleName: qsTr("Colour")
        onClicked: panel.choosingColor = !panel.choosingColor
    }

    // The wheels follow the row view (a new row, another folder, a rebuilt picker).
    function placeWheels() {
        if (!panel.rowView) return
        folders.positionViewAtIndex(panel.rowView.folderRow, Tumbler.Center)
        loops.positionViewAtIndex(panel.rowView.loopRow, Tumbler.Center)
        folders.currentIndex = panel.rowView.folderRow
        loops.currentIndex = panel.rowView.loopRow
    }
    onRowViewChanged: Qt.callLater(panel.placeWheels)
    onVisibleChanged: Qt.callLater(panel.placeWheels)
    Connections {
        target: panel.rowView
        function onPickerChanged() { Qt.callLater(panel.placeWheels) }
    }

    // The loop picker: "All loops" and the folders on the left, their loops on the right.
    Row {
        id: picker
        objectName: "loopPicker"
        visible: !panel.choosingColor
        x: 16
        y: picture.y + picture.height + 16
        width: panel.width - 32
        height: panel.height - y - 8
        Tumbler {
            id: folders
            width: picker.width / 2; height: picker.height
            model: panel.rowView ? panel.rowView.folders : []
            delegate: Text {
                required property var modelData
                required property int index
                text: modelData
                color: "white"
                font.bold: true
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
                elide: Text.ElideRight
                opacity: 1.0 - Math.abs(Tumbler.displacement) / (folders.visibleItemCount / 2)
            }
            onMovingChanged: if (!moving && panel.rowView) panel.rowView.selectFolder(currentIndex)
        }
        Tumbler {
            id: loops
            width: picker.width / 2; height: picker.height
            model: panel.rowView ? panel.rowView.loops : []
            delegate: Text {
                required property var modelData
                required property int index
                text: modelData
                color: "white"
                font.bold: true
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
                elide: Text.ElideRight
                opacity: 1.0 - Math.abs(Tumbler.displacement) / (loops.visibleItemCount / 2)
            }
            onMovingChanged: if (!moving && panel.rowView) panel.rowView.selectLoop(currentIndex)
        }
    }

    // The colour chooser: the palette, one swatch per colour number.
    Grid {
        objectName: "rowColorChooser"
        visible: panel.choosingColor
        x: 16
        y: picker.y
        columns: 16
        readonly property real cell: Math.min((panel.width - 32) / 16, (panel.height - y - 8) / 9)
        Repeater {
            model: 144
            Rectangle {
                required property int index
                width: parent.cell; height: parent.cell
                // Column-major: each palette row (one hue) is a column here.
                color: Colorer.colorForNumber((index % 16) * 9 + Math.floor(index / 16))
                border.width: panel.rowView && panel.rowView.colorNum === (index % 16) * 9 + Math.floor(index / 16) ? 3 : 0
                border.color: "white"
                TapHandler {
                    onTapped: {
                        panel.rowView.colorPicked((parent.index % 16) * 9 + Math.floor(parent.index / 16))
                        panel.choosingColor = false
                    }
                }
            }
        }
    }
}
