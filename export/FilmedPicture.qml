// The picture an export films: a loop's instruments as a grid of photo
// tiles that pulse while they sound, or a track's rows of loop colours with
// the logo. The export controller films it and snapshots it.
pragma ComponentBehavior: Bound
import QtQuick
import Quillo.Kit
import Quillo.Export

Rectangle {
    id: picture

    required property ExportVC controller
    readonly property bool isTrack: controller.kind === "track"
    property var sounding: ({})

    color: Colorer.backgColor
    clip: true

    Connections {
        target: picture.controller
        function onInstrumentPulse(slot, playing) {
            const s = Object.assign({}, picture.sounding)
            s[slot] = playing
            picture.sounding = s
        }
    }

    // Loop: one tile per instrument.
    Repeater {
        model: picture.isTrack ? [] : picture.controller.instruments
        delegate: Item {
            id: tile
            required property int index
            required property var modelData
            readonly property rect cell: Framr.revision >= 0
                ? Framr.ffExportLoopInstrVOnAll(Qt.size(picture.width, picture.height), index,
                                                picture.controller.instruments.length)
                : Qt.rect(0, 0, 0, 0)
            x: cell.x; y: cell.y; width: cell.width; height: cell.height
            scale: picture.sounding[index] ? 0.75 : 1.0
            Behavior on scale { NumberAnimation { duration: 60 } }

            Rectangle {
                anchors.fill: parent
                anchors.margins: 2
                radius: width * 0.12
                color: Colorer.colorForNumber(tile.modelData.colorNumber)
            }
            Image {
                readonly property rect frame: Framr.ffExportPhotoOnInstr(Qt.size(tile.width, tile.height))
                x: frame.x; y: frame.y; width: frame.width; height: frame.height
                visible: picture.controller.includePhotos && tile.modelData.photo !== ""
                source: tile.modelData.photo
                fillMode: Image.PreserveAspectCrop
                sourceSize.width: width * 2
                sourceSize.height: height * 2
                asynchronous: false
            }
        }
    }

    // Track: a band per instrument colour, the logo on top.
    Column {
        visible: picture.isTrack
        anchors.fill: parent
        Repeater {
            model: picture.isTrack ? picture.controller.instruments : []
            delegate: Rectangle {
                required property var modelData
                width: picture.width
                height: picture.height / Math.max(1, picture.controller.instruments.length)
                color: Colorer.colorForNumber(modelData.colorNumber)
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
