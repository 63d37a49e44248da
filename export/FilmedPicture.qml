// The picture an export films: a loop's grid (the loop view, its tiles
// pulsing while their sounds sound), or a track's still picture, its rows'
// colours with the logo. The export controller films it and snapshots it.
pragma ComponentBehavior: Bound
import QtQuick
import Quillo.Kit
import Quillo.LoopEditor
import Quillo.Export

Rectangle {
    id: picture

    required property ExportVC controller
    readonly property bool isTrack: controller.kind === "track"

    color: Colorer.backgColor
    clip: true

    LoopViewItem {
        anchors.fill: parent
        visible: !picture.isTrack
        loopView: picture.controller.loopView
    }

    // Track: a band per row in the row's colour, the logo on top.
    Column {
        visible: picture.isTrack
        anchors.fill: parent
        Repeater {
            model: picture.isTrack ? picture.controller.trackColors : []
            delegate: Rectangle {
                required property var modelData
                width: picture.width
                height: picture.height / Math.max(1, picture.controller.trackColors.length)
                color: Colorer.colorForNumber(modelData)
            }
        }
    }
    Rectangle {
        id: logo
        visible: picture.isTrack
        readonly property rect frame: Framr.ffExportTrackLogoOnAll(Qt.rect(0, 0, picture.width, picture.height))
        x: frame.x; y: frame.y; width: frame.width; height: frame.height
        radius: height / 2
        color: Colorer.backgColor
        TintedIcon {
            anchors.centerIn: parent
            width: parent.width * 0.7
            height: parent.height * 0.7
            name: "logo"
            color: Colorer.mainColor
        }
    }
}
