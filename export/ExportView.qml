// The export screen: shares one library item (kind "sound", "soundFolder",
// "loop", "loopFolder" or "track", and its name). The screen grows from the
// share button that opened it (startFrame); its settings page lies one screen
// height below and slides up. Everything it shows is decided by ExportVC.
import QtQuick
import QtQuick.Controls
import Quillo.Kit
import Quillo.Export

Item {
    id: screen

    property string kind
    property string name
    // Where the screen grows from (the share button), in window coordinates;
    // empty: it simply appears.
    property rect startFrame: Qt.rect(0, 0, 0, 0)
    property color bordcolor: Colorer.mainColor
    // For a window stack: the bar is not shown over this screen.
    property string title
    property bool navigationBarHidden: true
    readonly property alias controller: vc
    signal closed()

    focus: true
    Keys.onEscapePressed: vc.composer ? vc.composer.cancel() : vc.cancelPressed()
    Keys.onDeletePressed: vc.settingsShown ? vc.okSettingsPressed() : vc.sendPressed()
    Keys.onReturnPressed: vc.settingsShown ? vc.okSettingsPressed() : vc.sendPressed()

    ExportVC {
        id: vc
        kind: screen.kind
        name: screen.name
        filmedItem: picture
        onRemoveExportVC: {
            screen.closed()
            if (screen.StackView.view) screen.StackView.view.pop()
        }
    }

    // The frame that grows from the share button to the whole screen.
    Rectangle {
        id: frame
        readonly property bool grows: screen.startFrame.width > 0
        color: Colorer.backgColor
        border.color: screen.bordcolor
        border.width: grown ? 0 : 2
        radius: grown ? 0 : Math.min(width, height) / 2
        clip: true
        property bool grown: !grows
        x: grown ? 0 : screen.startFrame.x
        y: grown ? 0 : screen.startFrame.y
        width: grown ? screen.width : screen.startFrame.width
        height: grown ? screen.height : screen.startFrame.height
        Behavior on x { NumberAnimation { duration: 300; easing.type: Easing.OutCubic } }
        Behavior on y { NumberAnimation { duration: 300; easing.type: Easing.OutCubic } }
        Behavior on width { NumberAnimation { duration: 300; easing.type: Easing.OutCubic } }
        Behavior on height { NumberAnimation { duration: 300; easing.type: Easing.OutCubic } }
        Behavior on radius { NumberAnimation { duration: 300 } }
        Component.onCompleted: grown = true

        // Everything moves up by a screen height when the settings show.
        Item {
            id: page
            width: screen.width
            height: screen.height * 2
            opacity: frame.grown && frame.width > screen.width * 0.5 ? 1 : 0
            Behavior on opacity { NumberAnimation { duration: 150 } }
            y: vc.settingsShown ? -Framr.scrnHei : 0
            Behavior on y { NumberAnimation { duration: 300; easing.type: Easing.InOutQuad } }
            visible: vc.phase !== ExportVC.Composing && vc.phase !== ExportVC.Result && vc.phase !== ExportVC.Closed

            // --- the item ---
            TintedIcon {
                readonly property rect f: Framr.ffExportFileIcon
                x: f.x; y: f.y; width: f.width; height: f.height
                visible: vc.fileIcon !== ""
                name: vc.fileIcon
                color: Colorer.mainColor
            }
            KitLabel {
                readonly property rect f: Framr.revision >= 0
                    ? Framr.ffExportFileNameLabelOfSound(screen.kind === "sound" || screen.kind === "soundFolder")
                    : Qt.rect(0, 0, 0, 0)
                x: f.x; y: f.y; width: f.width; height: f.height
                text: vc.fileName
                color: Colorer.mainColor
            }
            KitLabel {
                readonly property rect f: Framr.ffExportFileSizeLabel
                x: f.x; y: f.y; width: f.width; height: f.height
                visible: vc.sizeText !== ""
                text: vc.sizeText
                color: Colorer.mainColor
                opacity: 0.8
            }
            FilmedPicture {
                id: picture
                controller: vc
                visible: screen.kind === "loop" || screen.kind === "track"
                readonly property rect f: Framr.revision >= 0 ? Framr.ffExportLoopAllInstrV(vc.format) : Qt.rect(0, 0, 0, 0)
                x: f.x; y: f.y; width: f.width; height: f.height
                Behavior on width { NumberAnimation { duration: 300 } }
                Behavior on height { NumberAnimation { duration: 300 } }
            }

            // --- buttons ---
            ImageButton {
                readonly property rect f: Framr.revision >= 0 ? Framr.ffBottomButtonAtCol(0, false) : Qt.rect(0, 0, 0, 0)
                x: f.x; y: f.y; width: f.width; height: f.height
                image: "cancelButton"
                onClicked: vc.cancelPressed()
            }
            ImageButton {
                readonly property rect f: Framr.revision >= 0 ? Framr.ffBottomButtonAtCol(2, false) : Qt.rect(0, 0, 0, 0)
                x: f.x; y: f.y; width: f.width; height: f.height
                visible: vc.offersExport && vc.phase === ExportVC.Idle
                image: "settingsButton"
                onClicked: vc.settingsPressed()
            }
            ImageButton {
                readonly property rect f: Framr.revision >= 0 ? Framr.ffExportDoneButton(true) : Qt.rect(0, 0, 0, 0)
                x: f.x; y: f.y; width: f.width; height: f.height
                visible: vc.offersExport && vc.phase === ExportVC.Idle
                image: "okButton"
                accessibleName: qsTr("Send")
                onClicked: vc.sendPressed()
            }

            // --- progress ---
            Rectangle {
                readonly property rect f: Framr.revision >= 0 ? Framr.ffExportProgress(1.0) : Qt.rect(0, 0, 0, 0)
                x: f.x; y: f.y; width: f.width; height: f.height
                visible: vc.phase === ExportVC.Capturing || vc.phase === ExportVC.Finishing
                radius: height / 2
                color: Qt.rgba(Colorer.mainColor.r, Colorer.mainColor.g, Colorer.mainColor.b, 0.5)
            }
            Rectangle {
                readonly property rect f: Framr.revision >= 0 ? Framr.ffExportProgress(vc.progress) : Qt.rect(0, 0, 0, 0)
                x: f.x; y: f.y; width: f.width; height: f.height
                visible: vc.phase === ExportVC.Capturing || vc.phase === ExportVC.Finishing
                radius: height / 2
                color: Colorer.mainColor
                Accessible.role: Accessible.ProgressBar
                Accessible.name: qsTr("Progress")
            }

            // --- the settings page, one screen height below ---
            SegmentedRow {
                readonly property rect f: Framr.ffExportLoopAudioVideo
                x: f.x; y: f.y; width: f.width; height: f.height
                visible: vc.audioVideoVisible
                titles: [qsTr("Sound"), qsTr("Video")]
                currentIndex: vc.video ? 1 : 0
                accessibleName: qsTr("Sound or video")
                onActivated: (index) => vc.audioVideoChanged(index)
            }
            SegmentedRow {
                readonly property rect f: Framr.ffExportLoopTacts
                x: f.x; y: f.y; width: f.width; height: f.height
                visible: vc.repeatsVisible
                titles: ["1x", "2x", "4x", "8x"]
                currentIndex: vc.repeatsIndex
                accessibleName: qsTr("Repeats")
                onActivated: (index) => vc.repeatsChanged(index)
            }
            SegmentedRow {
                readonly property rect f: vc.audioVideoVisible ? Framr.ffExportLoopAttachPhotos : Framr.ffExportAttachSoundPhotos
                x: f.x; y: f.y; width: f.width; height: f.height
                visible: vc.offersExport
                titles: [qsTr("With photos"), qsTr("No photos")]
                currentIndex: vc.includePhotos ? 0 : 1
                accessibleName: qsTr("Photos")
                onActivated: (index) => vc.attachPhotosChanged(index)
            }
            SegmentedRow {
                readonly property rect f: Framr.ffExportLoopFormat
                x: f.x; y: f.y; width: f.width; height: f.height
                visible: vc.formatVisible
                titles: ["9:16", "1:1", "16:9"]
                currentIndex: vc.format
                accessibleName: qsTr("Format")
                onActivated: (index) => vc.formatChanged(index)
            }
            SegmentedRow {
                readonly property rect f: vc.video ? Framr.ffExportLoopSaveOrSendVideo : Framr.ffExportLoopSaveOrSend
                x: f.x; y: f.y; width: f.width; height: f.height
                Behavior on y { NumberAnimation { duration: 300 } }
                visible: vc.saveOrSendVisible
                titles: [vc.saveTitle, qsTr("Send by mail")]
                currentIndex: vc.toMail ? 1 : 0
                accessibleName: qsTr("Save or send")
                onActivated: (index) => vc.saveOrSendChanged(index)
            }
            ImageButton {
                readonly property rect f: Framr.revision >= 0 ? Framr.ffExportDoneButton(false) : Qt.rect(0, 0, 0, 0)
                x: f.x; y: f.y; width: f.width; height: f.height
                visible: vc.offersExport
                image: "okButton"
                accessibleName: qsTr("Done")
                onClicked: vc.okSettingsPressed()
            }
        }

        // --- the result ---
        KitLabel {
            id: result
            readonly property rect f: Framr.ffExportResultLabel
            x: f.x; y: f.y; width: f.width; height: f.height
            visible: vc.phase === ExportVC.Result
            text: vc.resultText
            color: Colorer.mainColor
            opacity: 0
            SequentialAnimation {
                id: fade
                NumberAnimation { target: result; property: "opacity"; from: 0; to: 1; duration: 300 }
                PauseAnimation { duration: 300 }
                NumberAnimation { target: result; property: "opacity"; to: 0; duration: 300 }
            }
        }
        Connections {
            target: vc
            function onResultShown() { fade.restart() }
        }

        // --- the mail composer ---
        Loader {
            id: composerLoader
            anchors.fill: parent
        }
        Connections {
            target: vc
            function onStateChanged() {
                if (vc.composer && !composerLoader.item)
                    composerLoader.setSource("MailComposerView.qml", { composer: vc.composer })
                else if (!vc.composer && composerLoader.item)
                    composerLoader.source = ""
            }
        }
    }
}
