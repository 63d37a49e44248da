// A label in the kit's style: bold, 0.6 of its height, shrinking to fit down
// to 8 points, clear background, in the background colour unless told.
import QtQuick
import Quillo.Kit

Text {
    color: Colorer.backgColor
    font.bold: true
    font.pixelSize: Math.max(Uier.minTextPixelSize, height * Uier.textHeightFactor)
    fontSizeMode: Text.Fit
    minimumPixelSize: Uier.minTextPixelSize
    horizontalAlignment: Text.AlignHCenter
    verticalAlignment: Text.AlignVCenter
    elide: Text.ElideRight
}
