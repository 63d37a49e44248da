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
    readonly property real photoBorderFactor: 0.1 // round photos' border, part of the width

    function pushdownColor(color) { return Colorer.darkerColorForColor(color) }
    function pushupColor(color) { return Colorer.lighterColorForColor(color) }
}
