// The sound panel with everything it opens: the colour chooser, the photo
// chooser, the file dialog on the Pictures folder and the camera. Put it over
// the host screen (it fills its parent) and destroy it on `closed`.
//
// With no soundView given it makes its own: set soundName ("" for a new
// recording) and startFrame (window coordinates) when creating it, or at the
// latest in a Loader's onLoaded (the panel opens just after). A host screen
// that handles photos itself passes its PhotoDelegatVC as host.
import QtQuick
import QtQuick.Dialogs
import Quillo.Kit
import Quillo.SoundEditor

Item {
    id: panel

    property string soundName: ""
    property rect startFrame: Qt.rect(Framr.scrnWid / 2 - 1, Framr.scrnHei / 2 - 1, 2, 2)
    property PhotoDelegatVC host: PhotoDelegatVC {}
    property SoundView soundView: null
    // False when the host opens the panel itself and sets soundView.
    property bool makesItsOwnView: true
    // "created", "edited", "unchanged", "failed" or "cancelled", with the sound's name.
    signal finished(string result, string soundName)
    signal closed()
    // The panel's own reports, passed on for hosts that follow them one by one.
    signal soundWasAddedOrEdited(string soundName)
    signal soundRecordingWasCancelled()
    signal removeSoundView()

    anchors.fill: parent
    focus: true

    function open() {
        if (soundView)
            return
        const made = soundViewMaker.createObject(panel) as SoundView
        if (soundName.length === 0 || !made.addExistingSound(soundName, startFrame))
            made.addNewSoundView(startFrame)
        soundView = made
    }
    Component { id: soundViewMaker; SoundView {} }
    // Opens once the creator has had its say (a Loader's onLoaded comes after completion).
    Timer { id: opener; interval: 0; onTriggered: panel.open() }
    Component.onCompleted: {
        if (makesItsOwnView)
            opener.start()
        forceActiveFocus()
    }
    onSoundViewChanged: {
        if (soundView)
            host.soundV = soundView
        showPanel()
        forceActiveFocus()
    }

    Connections {
        target: panel.soundView
        function onFinished(result, name) { panel.finished(result, name) }
        function onSoundWasAddedOrEdited(name) { panel.soundWasAddedOrEdited(name) }
        function onSoundRecordingWasCancelled() { panel.soundRecordingWasCancelled() }
        function onRemoveSoundView() {
            panel.removeSoundView()
            panel.closed()
        }
    }

    Connections {
        target: panel.host
        function onShowImagePickerForCamera(source) {
            if (source === 1) {
                if (camera.available)
                    cameraLoader.setSource(Qt.resolvedUrl("CameraViewItem.qml"), { camera: camera })
                else if (photoChooser.item)
                    photoChooser.item.notice = qsTr("No camera")
            } else {
                fileDialog.open()
            }
        }
        function onMessage(text) { if (photoChooser.item) photoChooser.item.notice = text }
    }

    // The views are loaded by file with their controllers handed over, so
    // that each keeps the controller it was made for.
    Loader { id: panelItem }
    Connections {
        target: panelItem.item
        ignoreUnknownSignals: true
        function onColorRequested() { panel.openColorChooser() }
        function onPhotoRequested() { panel.openPhotoChooser() }
    }
    function showPanel() {
        if (soundView)
            panelItem.setSource(Qt.resolvedUrl("SoundViewItem.qml"), { soundView: soundView })
    }

    function openColorChooser() {
        colorChooser.setSource(Qt.resolvedUrl("SoundColorViewItem.qml"), { view: panel.soundView.colorPressed() })
    }
    function openPhotoChooser() {
        photoChooser.setSource(Qt.resolvedUrl("SoundPhotoViewItem.qml"), {
            view: panel.soundView.photoPressed(),
            panelColor: panel.soundView.panelColor,
            cameraAvailable: camera.available
        })
    }

    Loader { id: colorChooser }
    Connections {
        target: colorChooser.item ? panel.soundView.soundColorV() : null
        ignoreUnknownSignals: true
        function onRemoveSoundColorView() { colorChooser.source = "" }
    }
    Loader { id: photoChooser }
    Connections {
        target: photoChooser.item ? panel.soundView.soundPhotoV() : null
        ignoreUnknownSignals: true
        function onRemoveSoundPhotoView() { photoChooser.source = "" }
    }

    PhotoCamera {
        id: camera
        onCaptured: function (image) {
            panel.host.applyImage(image, true)
            cameraLoader.source = ""
        }
    }
    Loader { id: cameraLoader }
    Connections {
        target: cameraLoader.item
        ignoreUnknownSignals: true
        function onClosed() { cameraLoader.source = "" }
    }

    FileDialog {
        id: fileDialog
        title: qsTr("Choose a photo")
        currentFolder: panel.host.picturesFolder
        nameFilters: panel.host.imageNameFilters
        onAccepted: panel.host.applyImageFile(selectedFile)
    }

    // Escape closes what is open on top (camera, chooser) or cancels the panel;
    // Space plays or stops the sound; Delete is Done.
    Keys.onPressed: function (event) {
        if (event.key === Qt.Key_Escape) {
            if (cameraLoader.item) cameraLoader.source = ""
            else if (photoChooser.item) panel.soundView.soundPhotoV().cancelPressed()
            else if (colorChooser.item) colorChooser.source = ""
            else if (panel.soundView.settingsShown) panel.soundView.okSettingsPressed()
            else panel.soundView.cancelPressed()
            event.accepted = true
        } else if (event.key === Qt.Key_Space && panel.soundView.elementsShown) {
            panel.soundView.playPressed()
            event.accepted = true
        } else if (event.key === Qt.Key_Delete && panel.soundView.elementsShown) {
            panel.soundView.donePressed()
            event.accepted = true
        }
    }
}
