// Draws a SoundView: the circle in the sound's colour with the name and
// folder, the waveform (or the live input trace while recording), the length,
// the photo, colour, record and play buttons, Cancel and Done; the settings
// page lies one screen height below and slides up over it.
import QtQuick
import QtQuick.Controls
import Quillo.Kit
import Quillo.Kit as Kit  // QtQuick has an Animator of its own
import Quillo.Lists as Lists
import Quillo.SoundEditor

AnimatedViewItem {
    id: root

    required property SoundView soundView
    signal colorRequested()
    signal photoRequested()

    view: soundView

    readonly property real sw: Framr.scrnWid
    readonly property real sh: Framr.scrnHei
    readonly property rect circle: Framr.fullScrnCircle
    readonly property real side: 0.26 * sw
    // A frame given in window coordinates, placed inside the circle.
    function place(x, y, w, h) {
        Framr.revision
        return Framr.tffsrtfsc(Qt.rect(x, y, w, h))
    }
    function applyFrame(item, r) {
        item.x = r.x; item.y = r.y; item.width = r.width; item.height = r.height
    }

    Accessible.role: Accessible.Dialog
    Accessible.name: soundView.isNew ? qsTr("New sound") : qsTr("Sound %1").arg(soundView.name)

    // The content keeps the full circle's size, centred, so that it stays in
    // place while the circle grows; it slides up to show the settings page.
    Item {
        id: content
        width: root.circle.width
        height: root.circle.height
        x: (root.width - width) / 2
        y: (root.height - height) / 2 + (root.soundView.settingsShown ? -root.sh : 0)
        visible: root.width > root.circle.width * 0.5
        Behavior on y { NumberAnimation { duration: Kit.Animator.moveTime * 1000; easing.type: Easing.InOutQuad } }

        // ---- Top: cancel, settings, name and folder
        ImageButton {
            objectName: "cancelButton"
            readonly property rect f: root.place(0.03 * root.sw, 0.012 * root.sh, 0.1 * root.sw, 0.1 * root.sw)
            x: f.x; y: f.y; width: f.width; height: f.height
            image: "cancelButton"
            color: Colorer.backgColor
            onClicked: root.soundView.cancelPressed()
        }
        ImageButton {
            objectName: "settingsButton"
            readonly property rect f: root.place(0.87 * root.sw, 0.012 * root.sh, 0.1 * root.sw, 0.1 * root.sw)
            x: f.x; y: f.y; width: f.width; height: f.height
            image: "settingsButton"
            color: Colorer.backgColor
            // Before the first take and while recording; a recorded sound has Done instead.
            scale: root.soundView.isNew && !root.soundView.elementsShown ? 1 : Kit.Animator.zeroScale
            visible: scale > Kit.Animator.zeroScale
            Behavior on scale { NumberAnimation { duration: Kit.Animator.moveTime * 1000 } }
            onClicked: root.soundView.settingsPressed()
        }
        // Name and folder (with the folder chooser), laid out in window coordinates.
        Lists.NameNFlderChoosrContent {
            readonly property rect f: root.place(0, 0, root.sw, root.sh)
            x: f.x; y: f.y
            z: 10
            panel: root.soundView
        }

        // ---- Waveform, or the input trace while recording
        Item {
            id: waveArea
            readonly property rect f: root.place(Framr.ffSoundWave.x, Framr.ffSoundWave.y,
                                                 Framr.ffSoundWave.width, Framr.ffSoundWave.height)
            x: f.x; y: f.y; width: f.width; height: f.height

            WaveformPlot {
                objectName: "waveform"
                anchors.fill: parent
                visible: !root.soundView.recording && root.soundView.elementsShown
                minima: root.soundView.waveMinima
                maxima: root.soundView.waveMaxima
                color: Colorer.backgColor
                Accessible.role: Accessible.Graphic
                Accessible.name: qsTr("Waveform")
                Component.onCompleted: root.soundView.waveformColumns = Math.max(1, Math.round(width))
            }
            InputTracePlot {
                objectName: "inputTrace"
                anchors.fill: parent
                visible: root.soundView.recording
                points: root.soundView.tracePoints
                layoutSize: Qt.size(Framr.ffSoundWave.width, Framr.ffSoundWave.height)
                color: Colorer.backgColor
                Accessible.role: Accessible.Graphic
                Accessible.name: qsTr("Input level")
            }
            KitLabel {
                anchors.centerIn: parent
                width: parent.width
                height: parent.height * 0.18
                visible: root.soundView.isNew && !root.soundView.recording && !root.soundView.elementsShown
                text: qsTr("Tap the microphone to record")
                color: Colorer.backgColor
            }
        }
        KitLabel {
            objectName: "durationLabel"
            readonly property rect f: root.place(0.1 * root.sw, 0.41 * root.sh, 0.8 * root.sw, 0.04 * root.sh)
            x: f.x; y: f.y; width: f.width; height: f.height
            text: root.soundView.durationText
            color: Colorer.backgColor
            scale: root.soundView.elementsShown ? 1 : Kit.Animator.zeroScale
            Behavior on scale { NumberAnimation { duration: Kit.Animator.moveTime * 1000 } }
        }

        // ---- Photo and colour
        Item {
            objectName: "photoButton"
            readonly property rect f: root.place(0.14 * root.sw, 0.47 * root.sh, root.side, root.side)
            x: f.x; y: f.y; width: f.width; height: f.height
            scale: root.soundView.elementsShown ? 1 : Kit.Animator.zeroScale
            Behavior on scale { NumberAnimation { duration: Kit.Animator.moveTime * 1000 } }
            Accessible.role: Accessible.Button
            Accessible.name: qsTr("Photo")
            Rectangle {
                anchors.fill: parent
                radius: width / 2
                color: Colorer.backgColor
            }
            PhotoImage {
                anchors.fill: parent
                anchors.margins: parent.width * 0.06
                round: true
                image: root.soundView.photoImage
                visible: root.soundView.photoPath.length > 0
            }
            TintedIcon {
                anchors.centerIn: parent
                width: parent.width * 0.5
                height: width
                name: "cameraButton"
                color: root.soundView.colorButtonColor
                visible: root.soundView.photoPath.length === 0
            }
            TapHandler { onTapped: root.photoRequested() }
        }
        ColorButton {
            objectName: "colorButton"
            readonly property rect f: root.place(0.6 * root.sw, 0.47 * root.sh, root.side, root.side)
            x: f.x; y: f.y; width: f.width; height: f.height
            baseColor: root.soundView.colorButtonColor
            border.color: Colorer.backgColor
            border.width: width * 0.06
            accessibleName: qsTr("Colour")
            scale: root.soundView.elementsShown ? 1 : Kit.Animator.zeroScale
            Behavior on scale { NumberAnimation { duration: Kit.Animator.moveTime * 1000 } }
            onClicked: root.colorRequested()
        }

        // ---- Record and play
        ImageButton {
            objectName: "recordButton"
            readonly property real leftFactor: root.soundView.elementsShown ? 0.14 : 0.37
            readonly property rect f: root.place(leftFactor * root.sw, 0.66 * root.sh, root.side, root.side)
            x: f.x; y: f.y; width: f.width; height: f.height
            Behavior on x { NumberAnimation { duration: Kit.Animator.moveTime * 1000 } }
            visible: root.soundView.isNew
            image: root.soundView.recordImage
            color: Colorer.backgColor
            onClicked: root.soundView.recordPressed()
        }
        ImageButton {
            objectName: "playButton"
            readonly property real leftFactor: root.soundView.isNew ? 0.6 : 0.37
            readonly property rect f: root.place(leftFactor * root.sw, 0.66 * root.sh, root.side, root.side)
            x: f.x; y: f.y; width: f.width; height: f.height
            image: root.soundView.playImage
            color: Colorer.backgColor
            scale: root.soundView.elementsShown ? 1 : Kit.Animator.zeroScale
            Behavior on scale { NumberAnimation { duration: Kit.Animator.moveTime * 1000 } }
            onClicked: root.soundView.playPressed()
        }
        ImageButton {
            objectName: "doneButton"
            readonly property rect f: root.place(0.41 * root.sw, 0.86 * root.sh, 0.18 * root.sw, 0.18 * root.sw)
            x: f.x; y: f.y; width: f.width; height: f.height
            image: "okButton"
            accessibleName: qsTr("Done")
            color: Colorer.backgColor
            scale: root.soundView.elementsShown ? 1 : Kit.Animator.zeroScale
            Behavior on scale { NumberAnimation { duration: Kit.Animator.moveTime * 1000 } }
            onClicked: root.soundView.donePressed()
        }

        // ---- Settings page, one screen height below
        KitLabel {
            objectName: "autotrimLabel"
            readonly property rect f: root.place(0.1 * root.sw, 1.15 * root.sh, 0.55 * root.sw, 0.08 * root.sw)
            x: f.x; y: f.y; width: f.width; height: f.height
            text: qsTr("Autotrim")
            color: Colorer.backgColor
            horizontalAlignment: Text.AlignLeft
        }
        Switch {
            id: autotrimSwitch
            objectName: "autotrimSwitch"
            readonly property rect f: root.place(0.68 * root.sw, 1.15 * root.sh, 0.22 * root.sw, 0.08 * root.sw)
            x: f.x; y: f.y; width: f.width; height: f.height
            checked: root.soundView.autotrimRecords
            onToggled: root.soundView.autotrimRecords = checked
            Accessible.name: qsTr("Autotrim")
            indicator: Rectangle {
                anchors.fill: parent
                radius: height / 2
                color: autotrimSwitch.checked ? root.soundView.switchOnColor : Colorer.lightBlueColor
                border.color: Colorer.backgColor
                border.width: 2
                Rectangle {
                    width: parent.height - 6
                    height: width
                    radius: width / 2
                    y: 3
                    x: autotrimSwitch.checked ? parent.width - width - 3 : 3
                    color: Colorer.backgColor
                    Behavior on x { NumberAnimation { duration: 120 } }
                }
            }
        }
        KitLabel {
            readonly property rect f: root.place(0.1 * root.sw, 1.15 * root.sh + 0.1 * root.sw, 0.8 * root.sw, 0.05 * root.sw)
            x: f.x; y: f.y; width: f.width; height: f.height
            text: qsTr("Cut the silence before and after each new recording")
            color: Colorer.backgColor
            opacity: 0.8
            horizontalAlignment: Text.AlignLeft
        }
        ImageButton {
            objectName: "okSettingsButton"
            readonly property rect f: root.place(0.41 * root.sw, 1.75 * root.sh, 0.18 * root.sw, 0.18 * root.sw)
            x: f.x; y: f.y; width: f.width; height: f.height
            image: "okButton"
            color: Colorer.backgColor
            onClicked: root.soundView.okSettingsPressed()
        }
    }

    Text {
        objectName: "errorLabel"
        anchors.horizontalCenter: parent.horizontalCenter
        y: root.height / 2 + root.sh * 0.42
        width: root.sw * 0.9
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        text: root.soundView.lastError
        color: Colorer.backgColor
        font.bold: true
        visible: text.length > 0
    }
}
