// Shared constants and colour rules of the kit's builders (the button,
// label, bar button and photo components of this module use them).
pragma Singleton
import QtQuick
import Quillo.Kit

QtObject {
    readonly property real pressScale: 0.8        // an image button while pressed
    readonly property real barButtonSide: 22      // navigation bar buttons
    readonly property real textHeightFactor: 0.6  // label font as a part of its height
    readonly property real minTextPixelSize: 8    // labels shrink to fit down to this

    // What an icon means, for screen readers and automation.
    readonly property var _meanings: ({
        addButton: qsTr("Add"), micButton: qsTr("Record"), okButton: qsTr("OK"),
        cancelButton: qsTr("Cancel"), trashButton: qsTr("Delete"), pauseButton: qsTr("Pause"),
        playButton: qsTr("Play"), bigPlayButton: qsTr("Play"), stopButton: qsTr("Stop"),
        shareButton: qsTr("Share"), settingsButton: qsTr("Settings"), formenu: qsTr("Menu"),
        backarrow: qsTr("Back"), addFromListButton: qsTr("Add from list"), fileIcon: qsTr("File"),
        filesIcon: qsTr("Files"), folderIcon: qsTr("Folder"), cameraButton: qsTr("Camera"),
        photoGalleryButton: qsTr("Photos"), playButton256: qsTr("Play"), stopButton256: qsTr("Stop"),
        deleteRowButton: qsTr("Delete"), editRowButton: qsTr("Edit"), shareRowButton: qsTr("Share"),
        copyRowButton: qsTr("Copy"), tracksGlobal: qsTr("Tracks"), loopsGlobal: qsTr("Loops"),
        soundsGlobal: qsTr("Sounds"), settingsGlobal: qsTr("Settings"), logo: "Quillo"
    })
    function meaningOf(image) {
        const stem = String(image).replace(/\.(png|svg)$/, "")
        return _meanings[stem] !== undefined ? _meanings[stem] : stem
    }

    function pushdownColor(color) { return Colorer.darkerColorForColor(color) }
    function pushupColor(color) { return Colorer.lighterColorForColor(color) }
}
