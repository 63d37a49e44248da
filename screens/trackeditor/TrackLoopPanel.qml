pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Quillo.Kit
import Quillo.LoopEditor
import Quillo.TrackEditor

// An open row in its colour: the loop's name and picture (a tap opens the
// loop in the loop editor), the colour button, and the loop picker.
Rectangle {
    id: panel

    required property TrackLoopView rowView

    color: panel.rowView.color

    KitLabel {
        id: title
        objectName: "rowTitle"
        x: 16
        y: 12
        width: panel.width - 32
        height: 44
        text: panel.rowView.title
    }

    // The loop's picture, its tiles shrinking while the preview sounds them.
    LoopViewItem {
        id: picture
        objectName: "rowLoopPicture"
        readonly property real side: Math.min(panel.width * 0.5, panel.height * 0.3)
        loopView: panel.rowView.loopView
        x: (panel.width - side) / 2
        y: title.y + title.height + 12
        width: side
        height: side
        Accessible.role: Accessible.Button
        Accessible.name: qsTr("Open loop %1").arg(panel.rowView.title)
        TapHandler { onTapped: panel.rowView.openLoopPressed() }
    }

    ColorButton {
        objectName: "rowColorButton"
        x: picture.x + picture.width + 16
        y: picture.y + picture.height - height
        width: Math.min(56, (panel.width - picture.x - picture.width) - 32)
        height: width
        baseColor: panel.rowView.buttonColor
        border.width: 2
        border.color: Colorer.backgColor
        accessibleName: qsTr("Colour")
        onClicked: panel.rowView.colorPressed()  // the screen shows the chooser over everything
    }

    // The wheels follow the row view (a new row, another folder, a rebuilt picker).
    function placeWheels() {
        folders.positionViewAtIndex(panel.rowView.folderRow, Tumbler.Center)
        loops.positionViewAtIndex(panel.rowView.loopRow, Tumbler.Center)
        folders.currentIndex = panel.rowView.folderRow
        loops.currentIndex = panel.rowView.loopRow
    }
    // After the wheels have their models.
    Timer {
        id: wheelsLater
        interval: 0
        onTriggered: panel.placeWheels()
    }
    Component.onCompleted: wheelsLater.restart()
    Connections {
        target: panel.rowView
        function onPickerChanged() { wheelsLater.restart() }
    }

    // The loop picker: "All loops" and the folders on the left, their loops on the right.
    Rectangle {
        objectName: "loopPicker"
        x: 12
        y: picture.y + picture.height + 20
        width: panel.width - 24
        height: panel.height - y - 12
        radius: 12
        color: Qt.rgba(Colorer.backgColor.r, Colorer.backgColor.g, Colorer.backgColor.b, 0.12)

        Row {
            anchors.fill: parent
            anchors.margins: 4
            Tumbler {
                id: folders
                width: parent.width * 0.45
                height: parent.height
                visibleItemCount: 7
                model: panel.rowView.folders
                Accessible.name: qsTr("Loop folders")
                delegate: WheelItem { wheel: folders }
                onMovingChanged: if (!folders.moving) panel.rowView.selectFolder(folders.currentIndex)
            }
            Tumbler {
                id: loops
                width: parent.width * 0.55
                height: parent.height
                visibleItemCount: 7
                model: panel.rowView.loops
                Accessible.name: qsTr("Loops")
                delegate: WheelItem { wheel: loops }
                onMovingChanged: if (!loops.moving) panel.rowView.selectLoop(loops.currentIndex)
            }
        }
    }

    component WheelItem: Text {
        required property var modelData
        required property int index
        required property Tumbler wheel
        text: modelData
        color: Colorer.backgColor
        font.bold: true
        font.pixelSize: 17
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
        opacity: 1.0 - Math.abs(Tumbler.displacement) / (wheel.visibleItemCount / 2)
    }
}
