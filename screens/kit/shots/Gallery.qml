// The kit's controls laid out as on a phone screen, one scene at a time.
import QtQuick
import Quillo.Kit

Item {
    id: gallery

    required property var window
    property string scene: ""

    width: Framr.scrnWid
    height: Framr.scrnHei
    Component.onCompleted: Framr.window = gallery.window

    readonly property var iconNames: [
        "addButton", "micButton", "okButton", "cancelButton", "trashButton", "pauseButton",
        "playButton", "bigPlayButton", "stopButton", "shareButton", "settingsButton", "formenu",
        "backarrow", "addFromListButton", "fileIcon", "filesIcon", "folderIcon", "cameraButton",
        "photoGalleryButton", "playButton256", "stopButton256", "deleteRowButton", "editRowButton",
        "shareRowButton", "copyRowButton", "tracksGlobal", "loopsGlobal", "soundsGlobal",
        "settingsGlobal", "logo"
    ]

    function setUp(name) {
        scene = name
        if (name === "enlarged")
            bpm.pressed()
        if (name === "circle") {
            panel.addCancelButton()
            panel.addDoneButton()
            const tile = tiles.itemAt(5)
            panel.moveToCircle(Framr.fullScrnCircle,
                               Qt.rect(tile.x + tile.width / 2 - 20, tile.y + tile.height / 2 - 20, 40, 40), 0.3)
        }
    }

    Rectangle { anchors.fill: parent; color: Colorer.backgColor }

    // Navigation bar.
    Rectangle {
        width: parent.width
        height: Framr.navBarHei
        color: Colorer.backgColor
        visible: gallery.scene !== "enlarged"
        BarButton { x: 12; y: 11; image: "formenu"; color: Colorer.mainColor }
        BarButton { x: parent.width - 34; y: 11; image: "shareButton"; color: Colorer.mainColor }
        Text {
            anchors.centerIn: parent
            text: gallery.scene === "icons" ? "Icons" : "Easy beat 95"
            font.bold: true
            font.pixelSize: 17
            color: Colorer.mainColor
        }
        Rectangle { anchors.bottom: parent.bottom; width: parent.width; height: 1; color: Colorer.lightBlueColor }
    }

    // Instrument tiles, as on the loop editor (two columns, four rows).
    Repeater {
        id: tiles
        model: gallery.scene === "circle" || gallery.scene === "enlarged" || gallery.scene === "small" ? 7 : 0
        delegate: Rectangle {
            required property int index
            readonly property real cellW: Framr.scrnWid / 2
            readonly property real cellH: (Framr.allSpaceAboveBottom.height - Framr.navBarHei) / 4
            x: (index % 2) * cellW + cellW * 0.06
            y: Framr.navBarHei + Math.floor(index / 2) * cellH + cellH * 0.06
            width: cellW * 0.88
            height: cellH * 0.88
            radius: width * 0.08
            color: Colorer.colorForNumber([4, 31, 58, 85, 112, 139, 49][index])
            visible: gallery.scene !== "small" || index < 4
        }
    }

    // Adjusters of every kind at a size where their insides show.
    Row {
        visible: gallery.scene === "small"
        x: (parent.width - width) / 2
        y: Framr.navBarHei + (Framr.allSpaceAboveBottom.height - Framr.navBarHei) / 2 + 20
        spacing: Framr.scrnWid * 0.06
        Item {
            width: Math.min(140, Framr.scrnWid * 0.36); height: width
            LAAdjustViewItem {
                adjuster: VolumeView {
                    value: 70
                    color: Colorer.colorForNumber(121)
                    initialFrame: Qt.rect(0, 0, Math.min(140, Framr.scrnWid * 0.36), Math.min(140, Framr.scrnWid * 0.36))
                }
            }
        }
        Item {
            width: Math.min(140, Framr.scrnWid * 0.36); height: width
            LAAdjustViewItem {
                adjuster: SquaresNumView {
                    value: 32
                    initialFrame: Qt.rect(0, 0, Math.min(140, Framr.scrnWid * 0.36), Math.min(140, Framr.scrnWid * 0.36))
                }
            }
        }
    }

    // Volume fills from empty to full.
    Grid {
        visible: gallery.scene === "volumes"
        columns: 2
        spacing: 24
        x: (parent.width - width) / 2
        y: Framr.navBarHei + 30
        Repeater {
            model: [0, 20, 45, 70, 90, 100]
            delegate: Item {
                required property int index
                required property int modelData
                width: Math.min(150, Framr.scrnWid * 0.38)
                height: width
                LAAdjustViewItem {
                    adjuster: VolumeView {
                        value: modelData
                        color: Colorer.colorForNumber([4, 13, 31, 94, 121, 139][index])
                        initialFrame: Qt.rect(0, 0, Math.min(150, Framr.scrnWid * 0.38), Math.min(150, Framr.scrnWid * 0.38))
                    }
                }
            }
        }
    }

    // A sheet of every icon in the main colour, with its name.
    Grid {
        visible: gallery.scene === "icons"
        columns: 5
        x: 10
        y: Framr.navBarHei + 16
        rowSpacing: 14
        Repeater {
            model: gallery.iconNames
            delegate: Column {
                required property string modelData
                width: (Framr.scrnWid - 20) / 5
                spacing: 4
                TintedIcon {
                    anchors.horizontalCenter: parent.horizontalCenter
                    width: 44; height: 44
                    name: modelData
                    color: modelData === "logo" ? Colorer.darkBlueColor : Colorer.mainColor
                }
                Text {
                    width: parent.width
                    text: modelData
                    font.pixelSize: 8
                    horizontalAlignment: Text.AlignHCenter
                    elide: Text.ElideRight
                    color: Colorer.darkGreyBlueColor
                }
            }
        }
    }

    // The sound panel growing out of a tile into the full-screen circle.
    LAAnimatedViewItem {
        visible: gallery.scene === "circle"
        panel: LAAnimatedView { id: panel; color: Colorer.colorForNumber(85) }
        ImageButton {
            x: (Framr.scrnWid - width) / 2
            y: Framr.scrnHei * 0.38
            width: Framr.scrnWid * 0.3; height: width
            image: "micButton"
            color: Colorer.backgColor
        }
        KitLabel {
            x: Framr.scrnWid * 0.15
            y: Framr.scrnHei * 0.2
            width: Framr.scrnWid * 0.7
            height: 44
            text: "Sound 12"
        }
    }

    // Bottom panel: tempo, pause, trash.
    Item {
        visible: gallery.scene === "small" || gallery.scene === "enlarged" || gallery.scene === "circle"
        x: Framr.ffBottomPanel.x
        y: Framr.ffBottomPanel.y
        width: Framr.ffBottomPanel.width
        height: Framr.ffBottomPanel.height
        z: gallery.scene === "circle" ? -1 : 0
        Rectangle { width: parent.width; height: 1; color: Colorer.lightBlueColor }
        ImageButton {
            x: Framr.ffPauseButton.x; y: Framr.ffPauseButton.y
            width: Framr.ffPauseButton.width; height: width
            image: "pauseButton"
        }
        ImageButton {
            x: Framr.ffOkButton.x; y: Framr.ffOkButton.y
            width: Framr.ffOkButton.width; height: width
            image: "trashButton"
        }
        LAAdjustViewItem {
            adjuster: BpmView {
                id: bpm
                value: 95
                initialFrame: Framr.ffBpmButton
                enlargedFrame: Framr.ffBPMfullScrn
                Component.onCompleted: updateIndicatorViewForTact(5)
            }
        }
    }
}
