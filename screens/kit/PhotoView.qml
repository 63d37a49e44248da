// A sound's photo, round with a border of a tenth of its width in the background colour.
import QtQuick
import Quillo.Kit

RoundPhoto {
    borderColor: Colorer.backgColor
    Accessible.role: Accessible.Graphic
    Accessible.name: qsTr("Photo")
}
