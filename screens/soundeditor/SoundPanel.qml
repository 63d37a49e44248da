// The sound panel with everything it opens: the colour chooser, the photo
// chooser, the file dialog on the Pictures folder and the camera. Put it over
// the host screen (it fills its parent) and destroy it on `closed`.
//
// With no soundView given it makes its own: set soundName ("" for a new
// recording) and startFrame (window coordinates) before it is completed. A
// host screen that handles photos itself passes its PhotoDelegatVC as host.
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

    anchors.fill: parent
    focus: true

    Component.onCompleted: {
        if (makesItsOwnView && !soundView) {
            const made = Qt.createQmlObject("import Quillo.SoundEditor; SoundView {}", panel)
            if (soundName.length === 0 || !made.addExistingSound(soundName, startFrame))
                made.addNewSoundView(startFrame)
            soundView = made
        }
        forceActiveFocus()
    }
    onSoundViewChanged: {
        if (soundView)
            host.soundV = soundView
        forceActiveFocus()
    }

    Connections {
        target: panel.soundView
        function onFinished(result, name) { panel.finished(result, name) }
        function onRemoveSoundView() { panel.closed() }
    }

    Connections {
        target: panel.host
        function onShowImagePickerForCamera(source) {
            if (source === 1) {
                if (camera.available)
                    cameraLoader.active = true
                else
                    photoChooser.item.notice = qsTr("No camera")
            } else {
                fileDialog.open()
            }
        }
        function onMessage(text) { if (photoChooser.item) photoChooser.item.notice = text }
    }

    Loader {
        id: panelItem
        // No size of its own: the panel takes its frame from its controller.
        active: panel.soundView !== null
        sourceComponent: SoundViewItem {
            soundView: panel.soundView
            onColorRequested: colorChooser.view = panel.soundView.colorPressed()
            onPhotoRequested: photoChooser.view = panel.soundView.photoPressed()
        }
    }

    Loader {
        id: colorChooser
        property SoundColorView view: null
        active: view !== null
        sourceComponent: SoundColorViewItem { view: colorChooser.view }
    }

    Loader {
        id: photoChooser
        property SoundPhotoView view: null
        active: view !== null
        sourceComponent: SoundPhotoViewItem {
            view: photoChooser.view
            panelColor: panel.soundView.panelColor
            cameraAvailable: camera.available
        }
    }

    PhotoCamera {
        id: camera
        onCaptured: function (image) {
            panel.host.applyImage(image, true)
            cameraLoader.active = false
        }
    }
    Loader {
        id: cameraLoader
        active: false
        sourceComponent: CameraViewItem {
            camera: camera
            onClosed: cameraLoader.active = false
        }
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
            if (cameraLoader.active) cameraLoader.active = false
            else if (photoChooser.view) photoChooser.view.cancelPressed()
            else if (colorChooser.view) colorChooser.view = null
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
