// A text field that finishes on Return.
import QtQuick
import Quillo.Kit
import QtQuick.Controls

TextField {
    font.bold: true
    font.pixelSize: Math.max(Uier.minTextPixelSize, height * 0.45)
    color: Colorer.darkGreyBlueColor
    inputMethodHints: Qt.ImhNoPredictiveText
    onAccepted: focus = false
}
